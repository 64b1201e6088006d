#include "support/PowerCut.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>

#include "container/ContainerStore.h"
#include "container/WorkingContainers.h"
#include "db/Schema.h"
#include "db/Statement.h"
#include "db/Transaction.h"
#include "platform/Device.h"
#include "platform/WholeFile.h"
#include "platform/adoce/DatabaseFile.h"
#include "rovanactl/Command.h"
#include "sales/PastOrder.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"
#include "storage/StoredChanges.h"
#include "support/PrintQt.h"

/// Cuts the power at any moment of whatever changes a file, and looks at what the disk may hold then.
namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kCutsOfATest = 40;

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class PowerCutTest : public StoredChangesTest {
  protected:
    PowerCutTest() : random_(seed_), cut_(u"/dev/shm/rovana-power-XXXXXX"_s) {
        std::printf("ROVANA_TEST_SEED=%u\n", seed_);
        reset();
    }
    ~PowerCutTest() override { platform::device::setFolder(device_.folder()); }
    static void TearDownTestSuite() { std::printf("torture power %d 0 %d %d 0\n", changes_, cuts_, lost_); }

    /// Lets `change`, which may `mark` what has been done so far, run once and cuts the power many times.
    /// `look(done)` sees the folder of one cut, with as many marks passed; true when it holds what it should.
    void cutEverywhere(const char* name, const std::function<void(const std::function<void()>& mark)>& change,
                       const std::function<bool(int done)>& look) {
        SCOPED_TRACE(name);
        platform::adoce::DatabaseFile::forgetAll();
        PowerCut power(device_.folder());
        std::vector<int> marks;
        change([&] { marks.push_back(power.calls()); });
        platform::adoce::DatabaseFile::forgetAll();
        power.finish();
        ++changes_;
        const std::vector<int> points = power.turningPoints();
        const int asked = qEnvironmentVariableIntValue("ROVANA_POWER_CUTS");
        for (int cut = 0; cut < (asked > 0 ? asked : kCutsOfATest); ++cut) {
            // At what turns things round, on both its sides, and anywhere between.
            const int before = cut % 3 == 0 || points.empty()
                                   ? any(power.calls() + 1)
                                   : points[size_t(any(int(points.size())))] + cut % 3 - 1;
            constexpr int kPercent[] = {0, 10, 50, 90, 100};
            const int percent = kPercent[any(int(std::size(kPercent)))];
            power.stateBefore(before, percent, random_).writeTo(cut_.path());
            platform::device::setFolder(cut_.path());
            const int done = int(std::ranges::count_if(marks, [&](int mark) { return mark <= before; }));
            const bool isKept = look(done);
            ++cuts_;
            lost_ += !isKept;
            EXPECT_TRUE(isKept) << "before call " << before << " of " << power.calls() << ", " << percent
                                << " per cent, " << done << " done";
            platform::adoce::DatabaseFile::forgetAll();
            platform::device::setFolder(device_.folder());
            ASSERT_FALSE(HasFailure());
        }
    }

    /// True when the tables of the folder are as they were after so many marks, or as after one more.
    bool isOneOf(const QList<QStringList>& states, int done, bool alsoWorking = true) {
        const QStringList found = everythingIn(databaseIn(cut_.path()), alsoWorking);
        return found == states[done] || (done + 1 < states.size() && found == states[done + 1]);
    }

    static QString databaseIn(const QString& folder) { return folder + u"/My Documents/rvnclient.cdb"_s; }

    static bool command(const QStringList& arguments) {
        QString input, output, error;
        QTextStream in(&input), out(&output), err(&error);
        const int code = admin::run(
            QStringList{u"rovanactl"_s} + arguments + QStringList{u"--device"_s, platform::device::folder()},
            in, out, err);
        EXPECT_EQ(code, 0) << error.toStdString();
        return code == 0;
    }

    int any(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

    const unsigned seed_ = qEnvironmentVariableIsSet("ROVANA_TEST_SEED")
                               ? unsigned(qEnvironmentVariableIntValue("ROVANA_TEST_SEED"))
                               : std::random_device{}() >> 1;
    std::mt19937 random_;
    QTemporaryDir cut_;
    static inline int changes_ = 0;
    static inline int cuts_ = 0;
    static inline int lost_ = 0;
};

TEST_F(PowerCutTest, ChangesOfTheDatabaseAreWhole) {
    for (const Change& change : storedChanges()) {
        reset();
        const QStringList before = everything();
        EXPECT_TRUE(change.make());
        const QList<QStringList> states{before, everything()};
        reset();
        const bool isImport = qstrcmp(change.name, "import") == 0;
        cutEverywhere(
            change.name,
            [&](const auto& mark) {
                EXPECT_TRUE(change.make());
                mark();
            },
            [&](int done) {
                if (!isOneOf(states, done)) return false;
                // Loaded once, whatever became of the file and its ledger.
                if (isImport) command({u"import"_s});
                return !isImport || everythingIn(databaseIn(cut_.path())) == states[1];
            });
        if (HasFailure()) return;
    }
}

void writeSlips(const std::function<void()>& mark) {
    EXPECT_TRUE(sales::openSlip(u"A", u"2024-03-29", u"5003"));
    for (int line = 0; line < 10; ++line)
        EXPECT_TRUE(sales::insertLine(sales::newLine({u"2024-03-29"_s, u"5003"_s, u"0016"_s, {}, {}},
                                                     QString::number(1000 + line), {}, {3, 0})));
    EXPECT_TRUE(sales::replaceQuantities({u"1003"_s, u"3"_s, u"0"_s}, 4, 5, {}));
    EXPECT_EQ(sales::saveSlip(u"A", u"2024-03-29", u"5003"), sales::SaveOutcome::Saved);
    mark();
    EXPECT_TRUE(container::reloadSlip(u"A", u"2024-03-29", u"5003"));
    EXPECT_TRUE(container::addProduct({u"2024-03-29"_s, u"5003"_s, u"A"_s, u"0016"_s}, {}, u"1001"_s,
                                      {.bottles = 0, .emptyCrates = 2, .filledCrates = 0}));
    EXPECT_EQ(container::saveSlip(u"A", u"2024-03-29", u"5003", u"0016"), container::SaveOutcome::Saved);
    mark();
    EXPECT_TRUE(sales::openSlip(u"A", u"2024-03-29", u"5001"));
    sales::deleteLine({u"1001"_s, u"3"_s, QString()});
    EXPECT_TRUE(sales::deleteSlip(u"2024-03-29", u"5003", true, u"A"));
    mark();
}

TEST_F(PowerCutTest, SavedSlipsDoNotNoticeThatTheSlipBeingWrittenDoesNotWait) {
    const auto saved = [&] { return everythingIn(device_.databaseFile(), false); };
    QList<QStringList> states{saved()};
    writeSlips([&] { states << saved(); });
    reset();
    cutEverywhere("slips", writeSlips, [&](int done) { return isOneOf(states, done, false); });
}

// Were a saved slip written as the working tables are, this is where it would show.
TEST_F(PowerCutTest, WhatDoesNotWaitForTheDiskIsSeenToGo) {
    constexpr db::Statement<u"INSERT INTO MTM (JunNo) VALUES ('%s')"> kInsert;
    const QStringList before = everything();
    PowerCut power(device_.folder());
    EXPECT_TRUE(db::changeWorkingTable(kInsert(u"5009")));
    power.stateBefore(power.calls(), 0, random_).writeTo(cut_.path());
    EXPECT_EQ(everythingIn(databaseIn(cut_.path())), before);
    // The next change that waits takes along what did not.
    db::Transaction transaction;
    EXPECT_TRUE(transaction.run(kInsert(u"5010")) && transaction.commit());
    power.stateBefore(power.calls(), 0, random_).writeTo(cut_.path());
    EXPECT_EQ(everythingIn(databaseIn(cut_.path())).size(), before.size() + 2);
}

TEST_F(PowerCutTest, ASmallFileIsTheOldOneOrTheNewOne) {
    const QString name = u"/Flash Disk/SALE.ini"_s;
    QDir().mkpath(device_.folder() + u"/Flash Disk"_s);
    const QByteArrayList contents{"A\r\n", QByteArray(3000, 'B'), "C"};
    ASSERT_TRUE(platform::writeWholeFile(device_.folder() + name, contents[0]));
    cutEverywhere(
        "whole file",
        [&](const auto& mark) {
            for (const QByteArray& content : contents.sliced(1)) {
                EXPECT_TRUE(platform::writeWholeFile(device_.folder() + name, content));
                mark();
            }
        },
        [&](int done) {
            const QByteArray found = contentOf(cut_.path() + name);
            return found == contents[done] || (done < 2 && found == contents[done + 1]);
        });
}

TEST_F(PowerCutTest, AnArchiveTakesEverySlipOrNone) {
    const QString name = u"/old.cdb"_s;
    const auto archive = [&](const QString& folder) {
        return command({u"archive"_s, folder + name, u"--before"_s, u"2024-03-29"_s, u"--unclosed"_s});
    };
    device_.execute(
        u"PRAGMA user_version=%1; UPDATE MTM SET DDate = '2024-03-01', DTime = '10:00'; "
        "UPDATE YTM SET DDate = '2024-03-01'; UPDATE PRINTLOG SET DDate = '2024-03-01'"_s.arg(
            db::schema::kVersion));
    platform::adoce::DatabaseFile::forgetAll();
    const QStringList before = everything();
    QList<QStringList> after;
    cutEverywhere(
        "archive",
        [&](const auto& mark) {
            EXPECT_TRUE(archive(device_.folder()));
            mark();
            after = {everything(), everythingIn(device_.folder() + name)};
        },
        [&](int done) {
            const QString file = cut_.path() + name;
            const QString database = databaseIn(cut_.path());
            const bool isThere = QFile::exists(file);
            const QStringList found = everythingIn(database);
            if (isThere && everythingIn(file) != after[1]) return false;
            if (found != after[0] && (done == 1 || found != before)) return false;
            // What left is in the archive; what did not leaves with the next call.
            if (found == after[0]) return isThere;
            return archive(cut_.path()) && everythingIn(database) == after[0] &&
                   everythingIn(file) == after[1];
        });
}

}  // namespace
}  // namespace test
