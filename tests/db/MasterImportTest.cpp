#include "db/MasterImport.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>

#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/Device.h"
#include "support/FullDisk.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace db {

namespace {

using namespace Qt::Literals::StringLiterals;
using enum ImportResult::Outcome;

constexpr auto kDocuments = ImportSource::Documents;
constexpr auto kCard = ImportSource::StorageCard;

class MasterImportTest : public testing::Test {
  protected:
    static const ImportFile& file(QStringView name) {
        for (const ImportFile& known : importFiles()) {
            if (known.fileName == name) return known;
        }
        throw std::invalid_argument("no such import file");
    }

    QString onDisk(QStringView name, ImportSource source = kDocuments) {
        return platform::device::path(importPath(file(name), source));
    }

    void write(QStringView name, const QByteArray& content, ImportSource source = kDocuments) {
        device.writeFile(importPath(file(name), source), content);
    }

    ImportResult load(QStringView name, ImportSource source = kDocuments) {
        return importFile(file(name), source, [](int, int) {});
    }

    /// GARAEMAJIN's rows as "GCode/Gubun/Majin", in their order.
    QStringList margins() {
        QStringList rows;
        for (const QStringList& row : device.rows(u"SELECT * FROM GARAEMAJIN ORDER BY rowid"_s))
            rows << row.join(u'/');
        return rows;
    }

    static QByteArray contentOf(const QString& path) {
        QFile read(path);
        return read.open(QIODevice::ReadOnly) ? read.readAll() : QByteArray("(missing)");
    }

    test::TestDevice device;
};

TEST_F(MasterImportTest, LinesBecomeRowsWhateverTheirEnd) {
    const QByteArray longLine = "0009|01|5|" + QByteArray(1100, 'x') + "\n";
    struct Case {
        const char* what;
        QByteArray content;
        int lines;
        QStringList rows;
    };
    const QString one = u"0012/01/5"_s;
    const QString two = u"0013/02/-7"_s;
    const Case cases[] = {
        {"empty", "", 0, {}},
        {"CRLF", "0012|01|5|\r\n0013|02|-7|\r\n", 2, {one, two}},
        {"no end of the last", "0012|01|5|\n0013|02|-7|", 2, {one, two}},
        {"no | at the end", "0012|01|5\r\n0013|02|-7|\r\n", 2, {u"0012/01/"_s, two}},
        {"blank line", "0012|01|5|\n\n0013|02|-7|\n", 3, {one, u"//"_s, two}},
        {"the buffer's length", longLine, 2, {u"0009/01/5"_s, u"xxxx//"_s}},
    };
    for (const Case& c : cases) {
        device.execute(u"DELETE FROM GARAEMAJIN"_s);
        device.insert(u"GARAEMAJIN", {{u"GCode", u"old"}});
        write(u"GARAEMAJIN.RVN", c.content);
        EXPECT_EQ(countImportLines(file(u"GARAEMAJIN.RVN"), kDocuments), c.lines) << c.what;
        const ImportResult result = load(u"GARAEMAJIN.RVN");
        EXPECT_EQ(result.outcome, Loaded) << c.what;
        EXPECT_EQ(result.loaded, c.lines) << c.what;
        EXPECT_EQ(margins(), c.rows) << c.what;
    }
}

TEST_F(MasterImportTest, ALineMayFillTheBufferInTheMiddleOfACharacter) {
    QByteArray line = "0009|01|5|";
    while (line.size() < 1030) line += *platform::codepage::encode(u"가");
    write(u"GARAEMAJIN.RVN", line.first(1023) + '\n');
    EXPECT_EQ(load(u"GARAEMAJIN.RVN").rejected, 0);
    EXPECT_EQ(margins().value(0), u"0009/01/5"_s);
    write(u"GARAEMAJIN.RVN", line.first(1021) + '\n');  // here the line itself is broken
    EXPECT_EQ(load(u"GARAEMAJIN.RVN").rejected, 1);
}

TEST_F(MasterImportTest, FillsEveryColumnOfEveryTable) {
    struct Case {
        QStringView file;
        QString first;
        QString select;
    };
    const Case cases[] = {
        {u"MTM.RVN", u"2004-03-02"_s,
         u"SELECT "
         u"DDate,Gubun,GCode,GName,JunNo,WorkGubun,PCode,PName,JGubun,Box,Bon,MMoney,BMoney,YMoney,GMoney,"
         "UserID FROM MTM"_s},
        {u"GARAE.RVN", u"0012"_s, u"SELECT * FROM GARAE"_s},
        {u"PUMMOK.RVN", u"0012"_s, u"SELECT * FROM PUMMOK"_s},
        {u"GARAEDANGA.RVN", u"0012"_s, u"SELECT * FROM GARAEDANGA"_s},
        {u"GARAEMAJIN.RVN", u"0012"_s, u"SELECT * FROM GARAEMAJIN"_s},
    };
    for (const Case& c : cases) {
        QStringList fields{c.first};
        while (fields.size() < file(c.file).fields) fields << u"%1참"_s.arg(fields.size());
        write(c.file, *platform::codepage::encode(fields.join(u'|') + u"|\r\n"_s));
        EXPECT_EQ(load(c.file).outcome, Loaded);
        EXPECT_EQ(device.rows(c.select), QList<QStringList>{fields}) << c.file.toUtf8().constData();
    }
    EXPECT_EQ(device.value(u"SELECT count(*) FROM MTM WHERE DTime IS NULL"_s), u"1"_s);
}

TEST_F(MasterImportTest, OrdersAreAddedAndMasterDataReplaced) {
    for (int pass = 1; pass <= 2; ++pass) {
        write(u"MTM.RVN", "2004-03-02|a|\r\n2004-03-02|b|\r\n");
        write(u"GARAE.RVN", "0001|a|\r\n");
        EXPECT_EQ(load(u"MTM.RVN").outcome, Loaded);
        EXPECT_EQ(load(u"GARAE.RVN").outcome, Loaded);
        EXPECT_EQ(device.value(u"SELECT count(*) FROM MTM"_s).toInt(), 2 * pass);
        EXPECT_EQ(device.value(u"SELECT count(*) FROM GARAE"_s), u"1"_s);
    }
}

TEST_F(MasterImportTest, OnlyTheNamedFolderIsTouched) {
    write(u"GARAEMAJIN.RVN", "0001|d|1|\n");
    write(u"GARAEMAJIN.RVN", "0002|s|2|\n", kCard);
    EXPECT_EQ(load(u"GARAEMAJIN.RVN", findImportFile(file(u"GARAEMAJIN.RVN"))).outcome, Loaded);
    EXPECT_EQ(margins(), QStringList({u"0001/d/1"_s}));
    EXPECT_EQ(load(u"GARAEMAJIN.RVN", findImportFile(file(u"GARAEMAJIN.RVN"))).outcome, Loaded);
    EXPECT_EQ(margins(), QStringList({u"0002/s/2"_s}));
    EXPECT_EQ(load(u"GARAEMAJIN.RVN", kCard).outcome, NotOpened);
    EXPECT_EQ(margins(), QStringList({u"0002/s/2"_s})) << "a file that is not there empties nothing";
}

TEST_F(MasterImportTest, LinesThatBecomeNoRowAreKeptAside) {
    platform::clock::set(QDateTime(QDate(2004, 3, 2), QTime(8, 0)));
    const QString aside = onDisk(u"GARAEMAJIN.RVN") + u".rejected"_s;
    const QByteArray content = "0001|a|1|\r\n0002|O'Hara|2|\r\n0003|\xB0|3|\n0004|b|4|\n";
    const QByteArray rejected =
        "2\tnot accepted by the database\t0002|O'Hara|2|\n3\tnot code page 949\t0003|\xB0|3|\n";
    write(u"GARAEMAJIN.RVN", content);
    ImportResult result = load(u"GARAEMAJIN.RVN");
    EXPECT_EQ(result.outcome, Loaded);
    EXPECT_EQ(result.loaded, 2);
    EXPECT_EQ(result.rejected, 2);
    EXPECT_EQ(margins(), QStringList({u"0001/a/1"_s, u"0004/b/4"_s}));
    const QByteArray first = contentOf(aside);
    EXPECT_TRUE(first.startsWith("# ")) << first.constData();
    EXPECT_TRUE(first.endsWith(" 2004-03-02T08:00:00\n" + rejected)) << first.constData();

    // Another file's lines join them; the same file's, as after a stop, take the place of their own.
    write(u"GARAEMAJIN.RVN", "0005|'|5|\n");
    load(u"GARAEMAJIN.RVN");
    const QByteArray second = contentOf(aside);
    EXPECT_TRUE(second.startsWith(first));
    EXPECT_TRUE(second.endsWith("1\tnot accepted by the database\t0005|'|5|\n"));
    write(u"GARAEMAJIN.RVN", content);
    load(u"GARAEMAJIN.RVN");
    EXPECT_EQ(contentOf(aside), second.sliced(first.size()) + first);

    // Where they cannot be kept, nothing is loaded.
    ASSERT_TRUE(QFile::remove(aside));
    QDir().mkpath(aside);
    write(u"GARAEMAJIN.RVN", "0006|'|6|\n0007|b|7|\n");
    result = load(u"GARAEMAJIN.RVN");
    EXPECT_EQ(result.outcome, NotSaved);
    EXPECT_EQ(result.loaded, 0);
    EXPECT_EQ(margins(), QStringList({u"0001/a/1"_s, u"0004/b/4"_s}));
    EXPECT_TRUE(QFile::exists(onDisk(u"GARAEMAJIN.RVN")));
    platform::clock::set({});
}

// The ledger knows the file by then, so its orders are not added a second time.
TEST_F(MasterImportTest, AFileThatCannotBeDeletedIsLoadedOnce) {
    write(u"MTM.RVN", "2004-03-02|a|\n", kCard);
    const auto path = [](QStringView handheld) {
        return QFile::encodeName(platform::device::path(handheld));
    };
    const QByteArray card = path(platform::device::kStorageCardFolder);
    // Permissions bind the superuser only without his privileges, so the loading runs as nobody then.
    const uid_t user = ::geteuid();
    ASSERT_EQ(::chmod(QFile::encodeName(device.folder()).constData(), 0755), 0);
    ASSERT_EQ(::chmod(path(platform::device::kDocumentsFolder).constData(), 0777), 0);
    ASSERT_EQ(::chmod(path(platform::device::kDatabaseFile).constData(), 0666), 0);
    ASSERT_EQ(::chmod(path(u"\\저장소카드\\MTM.RVN").constData(), 0666), 0);
    ASSERT_EQ(::chmod(card.constData(), 0555), 0);
    ASSERT_EQ(user == 0 ? ::seteuid(65534) : 0, 0);

    const ImportResult first = load(u"MTM.RVN", kCard);
    const ImportResult second = load(u"MTM.RVN", kCard);
    ASSERT_EQ(::seteuid(user), 0);
    ASSERT_EQ(::chmod(card.constData(), 0755), 0);
    EXPECT_EQ(first.outcome, Loaded);
    EXPECT_FALSE(first.isDeleted);
    EXPECT_EQ(second.outcome, AlreadyLoaded);
    EXPECT_FALSE(second.isDeleted);
    EXPECT_EQ(device.value(u"SELECT count(*) FROM MTM"_s), u"1"_s);
    ASSERT_TRUE(QFile::exists(onDisk(u"MTM.RVN", kCard)));

    const ImportResult third = load(u"MTM.RVN", kCard);
    EXPECT_EQ(third.outcome, AlreadyLoaded);
    EXPECT_TRUE(third.isDeleted);
    EXPECT_FALSE(QFile::exists(onDisk(u"MTM.RVN", kCard)));
    EXPECT_EQ(device.value(u"SELECT count(*) FROM MTM"_s), u"1"_s);

    // The same lines sent again are new orders.
    write(u"MTM.RVN", "2004-03-02|a|\n", kCard);
    EXPECT_EQ(load(u"MTM.RVN", kCard).outcome, Loaded);
    EXPECT_EQ(device.value(u"SELECT count(*) FROM MTM"_s), u"2"_s);
}

TEST_F(MasterImportTest, AFullDiskLeavesTableAndFileAsTheyWere) {
    device.insert(u"GARAEMAJIN", {{u"GCode", u"old"}});
    QByteArray content;
    constexpr int kLines = 20000;
    for (int line = 0; line < kLines; ++line)
        content += QByteArray::number(1000 + line % 9000) + "|01|" + QByteArray::number(line) + "|\n";
    write(u"GARAEMAJIN.RVN", content);

    // The disk fills at the first line, among the lines, and at the end.
    int failures = 0;
    for (rlim_t limit = 8 * 1024;; limit *= 2) {
        ImportResult result;
        {
            const test::FullDisk full(limit);
            result = load(u"GARAEMAJIN.RVN");
        }
        if (result.outcome == Loaded) break;
        ASSERT_EQ(result.outcome, NotSaved);
        ASSERT_EQ(result.loaded, 0);
        ASSERT_EQ(margins(), QStringList({u"old//"_s})) << limit;
        ASSERT_EQ(contentOf(onDisk(u"GARAEMAJIN.RVN")), content);
        ++failures;
    }
    EXPECT_GE(failures, 3);
    EXPECT_EQ(device.value(u"SELECT count(DISTINCT Majin) FROM GARAEMAJIN"_s).toInt(), kLines);
    EXPECT_EQ(device.value(u"SELECT count(*) FROM GARAEMAJIN"_s).toInt(), kLines);
    EXPECT_FALSE(QFile::exists(onDisk(u"GARAEMAJIN.RVN")));
}

}  // namespace
}  // namespace db
