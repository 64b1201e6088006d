#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <random>

#include "db/MasterImport.h"
#include "db/Schema.h"
#include "platform/CodePage.h"
#include "platform/Device.h"
#include "platform/adoce/DatabaseFile.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace db {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kKills = 60;
constexpr int kFewestKills = 40;
constexpr qint64 kLongMs = 10000;  ///< A slow machine does with the fewest kills.

int linesOf(const ImportFile& file) {
    return file.fileName == u"GARAEDANGA.RVN" ? 3000 : 500;
}

QString tableOf(const ImportFile& file) {
    return file.fileName.chopped(4).toString();
}

/// Lines whose second field is their number.
QByteArray contentOf(const ImportFile& file) {
    QByteArray content;
    for (int line = 0; line < linesOf(file); ++line) {
        QStringList fields{file.firstFieldLength == 10 ? u"2004-03-02"_s : u"0012"_s, QString::number(line)};
        while (fields.size() < file.fields) fields << u"진로"_s;
        content += *platform::codepage::encode(fields.join(u'|') + u"|\r\n"_s);
    }
    return content;
}

/// What the import dialog does on "확  인", in a process of its own.
pid_t startImport() {
    // A child must not touch the parent's handle on the database.
    platform::adoce::DatabaseFile::forgetAll();
    const pid_t child = ::fork();
    if (child != 0) return child;
    for (const ImportFile& file : importFiles()) {
        const ImportSource source = findImportFile(file);
        if (source != ImportSource::None) importFile(file, source, {});
    }
    ::_exit(0);
}

bool endedByItself(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class ImportKillTest : public testing::Test {
  protected:
    void fill() {
        for (const ImportFile& file : importFiles()) {
            const QString table = tableOf(file);
            device.execute(u"DELETE FROM "_s + table);
            const QStringView number = schema::findTable(table)->columns[1];
            device.insert(table, {{number, u"old"}});
            device.writeFile(importPath(file, ImportSource::Documents), contentOf(file));
        }
    }

    static bool isWaiting(const ImportFile& file) {
        return QFile::exists(platform::device::path(importPath(file, ImportSource::Documents)));
    }

    /// True when the table holds every line once (and the orders from before); false when it is as it was.
    /// Anything else fails the test.
    bool isLoaded(const ImportFile& file) {
        const QString number = schema::findTable(tableOf(file))->columns[1].toString();
        const QStringList counts =
            device
                .rows(
                    u"SELECT count(*), count(DISTINCT %1), sum(%1 = 'old'), "
                    "max(CASE %1 WHEN 'old' THEN -1 ELSE CAST(%1 AS INTEGER) END) FROM %2"_s.arg(
                        number, tableOf(file)))
                .value(0);
        if (counts == QStringList({u"1"_s, u"1"_s, u"1"_s, u"-1"_s})) return false;
        const int old = file.deleteAll == nullptr ? 1 : 0;
        const QString rows = QString::number(linesOf(file) + old);
        EXPECT_EQ(counts, QStringList({rows, rows, QString::number(old), QString::number(linesOf(file) - 1)}))
            << tableOf(file).toStdString();
        return true;
    }

    test::TestDevice device;
};

TEST_F(ImportKillTest, KilledAtAnyMomentEveryLineIsThereOnceInTheEnd) {
    // Half of the numbers, since the variable is read as an int.
    const unsigned seed = qEnvironmentVariableIsSet("ROVANA_TEST_SEED")
                              ? unsigned(qEnvironmentVariableIntValue("ROVANA_TEST_SEED"))
                              : std::random_device{}() >> 1;
    std::printf("ROVANA_TEST_SEED=%u\n", seed);
    std::mt19937 random(seed);
    QElapsedTimer elapsed;
    elapsed.start();

    fill();
    QElapsedTimer undisturbed;
    undisturbed.start();
    ASSERT_TRUE(endedByItself(startImport()));
    std::uniform_int_distribution<int> delayUs(0, int(undisturbed.nsecsElapsed() / 1000));

    int kills = 0;
    while (kills < kFewestKills || (kills < kKills && elapsed.elapsed() < kLongMs)) {
        fill();
        while (true) {
            const pid_t child = startImport();
            ::usleep(useconds_t(delayUs(random)));
            ::kill(child, SIGKILL);
            if (endedByItself(child)) break;
            ++kills;
            // Looking here repairs the database after the kill; every other time the import has to.
            if (kills % 2 == 0) continue;
            for (const ImportFile& file : importFiles()) {
                EXPECT_TRUE(isLoaded(file) || isWaiting(file)) << tableOf(file).toStdString() << " is lost";
            }
            ASSERT_FALSE(HasFailure()) << "after kill " << kills;
        }
        for (const ImportFile& file : importFiles()) {
            EXPECT_TRUE(isLoaded(file)) << tableOf(file).toStdString();
            EXPECT_FALSE(isWaiting(file)) << tableOf(file).toStdString();
        }
        EXPECT_EQ(device.value(u"PRAGMA integrity_check"_s), u"ok"_s);
        ASSERT_FALSE(HasFailure()) << "after " << kills << " kills";
    }
}

}  // namespace
}  // namespace db
