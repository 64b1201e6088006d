#include "db/MasterImport.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <cerrno>
#include <thread>

#include "db/MasterLoads.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/Device.h"
#include "platform/adoce/DatabaseFile.h"
#include "support/PrintQt.h"
#include "support/RecordedTraces.h"
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
    const auto x = [](int count) { return QByteArray(count, 'x'); };
    const Case cases[] = {
        {"empty", "", 0, {}},
        {"CRLF", "0012|01|5|\r\n0013|02|-7|\r\n", 2, {one, two}},
        {"no end of the last", "0012|01|5|\n0013|02|-7|", 2, {one, two}},
        {"no | at the end", "0012|01|5\r\n0013|02|-7|\r\n", 2, {u"0012/01/"_s, two}},
        {"blank line", "0012|01|5|\n\n0013|02|-7|\n", 3, {one, u"//"_s, two}},
        {"what is over", "0012|01|5|9|9|\n0013x02|-7|\n", 2, {one, two}},
        {"a short first field", "12|1|5|\n0012|01| 5 |\n", 2, {u"12|1/5/"_s, u"0012/01/ 5 "_s}},
        // After the first field and its separator 200 characters count, closing "|" included.
        {"200 characters",
         "0012|" + x(197) + "|5|\n0012|" + x(198) + "|5|\n",
         2,
         {u"0012/"_s + QString::fromLatin1(x(197)) + u"/5"_s,
          u"0012/"_s + QString::fromLatin1(x(198)) + u'/'}},
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

TEST_F(MasterImportTest, FillsEveryColumnOfEveryTable) {
    for (const ImportFile& each : importFiles()) {
        QStringList fields{each.fileName == u"MTM.RVN" ? u"2004-03-02"_s : u"0012"_s};
        while (fields.size() < each.fields) fields << u"%1참"_s.arg(fields.size());
        write(each.fileName, *platform::codepage::encode(fields.join(u'|') + u"|\r\n"_s));
        EXPECT_EQ(load(each.fileName).outcome, Loaded);
        const auto rows = device.rows(u"SELECT * FROM "_s + each.fileName.chopped(4).toString());
        EXPECT_EQ(rows.value(0).first(fields.size()), fields) << each.fileName.toUtf8().constData();
    }
    EXPECT_EQ(device.value(u"SELECT count(*) FROM MTM WHERE DTime IS NULL"_s), u"1"_s);
    // Of an order's line 140 characters count after the date.
    for (const int count : {137, 138})
        write(u"MTM.RVN", "2004-03-03|" + QByteArray(count, 'x') + "|5|\n"), load(u"MTM.RVN");
    EXPECT_EQ(device.value(u"SELECT group_concat(GCode, '/') FROM MTM WHERE DDate = '2004-03-03'"_s),
              u"5/"_s);
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

    platform::clock::set({});
}

TEST_F(MasterImportTest, RejectedLinesFindAnotherPlaceBeforeTheGoodOnesStayOut) {
    const auto block = [&](ImportSource source) {
        const QString path = rejectedPath(file(u"GARAEMAJIN.RVN"), source);
        QFile::remove(path);
        return QDir().mkpath(path + u"/x"_s);
    };
    const auto import = [&] {
        write(u"GARAEMAJIN.RVN", "0006|'|6|\n0007|b|7|\n\xB0\n", kCard);
        return load(u"GARAEMAJIN.RVN", kCard);
    };
    EXPECT_EQ(import().keptIn, onDisk(u"GARAEMAJIN.RVN", kCard) + u".rejected"_s);
    ASSERT_TRUE(block(kCard));
    ImportResult result = import();
    EXPECT_EQ(result.keptIn, onDisk(u"GARAEMAJIN.RVN") + u".rejected"_s);
    ASSERT_EQ(result.firstRejected.size(), 2);
    EXPECT_EQ(result.firstRejected[0].number, 1);
    EXPECT_EQ(result.firstRejected[0].text, u"0006|'|6|"_s);
    EXPECT_EQ(result.firstRejected[1].text, u"?"_s);
    ASSERT_TRUE(block(kDocuments));
    const QString kept = u"SELECT Number || Reason || Line FROM IMPORTREJECT"_s;
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(import().keptIn, RejectedLines::kTable);
        EXPECT_EQ(device.rows(kept),
                  (QList<QStringList>{{u"1not accepted by the database0006%7C%27%7C6%7C"_s},
                                      {u"3not code page 949%B0"_s}}));
    }
    // With no place left nothing is loaded.
    device.execute(u"DELETE FROM GARAEMAJIN; DROP TABLE IMPORTREJECT"_s);
    result = import();
    EXPECT_EQ(result.outcome, NotSaved);
    EXPECT_EQ(result.loaded, 0);
    EXPECT_EQ(margins(), QStringList());
    EXPECT_TRUE(QFile::exists(onDisk(u"GARAEMAJIN.RVN", kCard)));
}

TEST_F(MasterImportTest, TwoAtOnceLoadOnce) {
    for (int pass = 1; pass <= 10; ++pass) {
        write(u"MTM.RVN", QByteArray("2004-03-02|a|\n").repeated(500));
        platform::adoce::DatabaseFile::forgetAll();
        int gate[2] = {};
        ASSERT_EQ(::pipe(gate), 0);
        pid_t children[2] = {};
        for (pid_t& child : children) {
            child = ::fork();
            if (child != 0) continue;
            char start = 0;
            ::close(gate[1]);
            [[maybe_unused]] const ssize_t opened = ::read(gate[0], &start, 1);
            load(u"MTM.RVN");
            ::_exit(0);
        }
        ::close(gate[0]);
        ::close(gate[1]);
        for (const pid_t child : children) ::waitpid(child, nullptr, 0);
        ASSERT_EQ(device.value(u"SELECT count(*) FROM MTM"_s).toInt(), pass * 500) << pass;
        ASSERT_FALSE(QFile::exists(onDisk(u"MTM.RVN")));
    }
}

TEST_F(MasterImportTest, OnlyWhatWasReadIsDeleted) {
    const QString path = onDisk(u"MTM.RVN");
    const QByteArray first = "2004-03-02|a|\n";
    const QByteArray second = "2004-03-02|b|\n2004-03-02|c|\n";
    for (const bool isReplaced : {true, false}) {
        write(u"MTM.RVN", first);
        const auto meanwhile = [&](int, int) {
            if (isReplaced) {
                device.writeFile(u"\\My Documents\\next"_s, second);
                ASSERT_EQ(::rename(QFile::encodeName(device.folder() + u"/My Documents/next"_s).constData(),
                                   QFile::encodeName(path).constData()),
                          0);
            } else {
                // Who opens it for writing waits for the load to end; this one does not want to wait.
                EXPECT_EQ(::open(QFile::encodeName(path).constData(), O_WRONLY | O_NONBLOCK), -1);
                EXPECT_EQ(errno, EWOULDBLOCK);
            }
        };
        EXPECT_EQ(importFile(file(u"MTM.RVN"), kDocuments, meanwhile).outcome, BeingWritten) << isReplaced;
        EXPECT_EQ(device.value(u"SELECT count(*) FROM MTM"_s), u"0"_s) << isReplaced;
        const QByteArray left = contentOf(path);
        EXPECT_EQ(left, isReplaced ? second : first);
        EXPECT_EQ(load(u"MTM.RVN").loaded, left.count('\n'));
        device.execute(u"DELETE FROM MTM"_s);
    }
}

TEST_F(MasterImportTest, AFileThatIsBeingWrittenWaits) {
    write(u"MTM.RVN", "2004-03-02|a|\n2004-03");
    QFile writer(onDisk(u"MTM.RVN"));
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly | QIODevice::Append));
    EXPECT_EQ(findImportFile(file(u"MTM.RVN")), kDocuments);
    test::RecordedTraces traces;
    EXPECT_EQ(load(u"MTM.RVN").outcome, BeingWritten);
    EXPECT_TRUE(traces.take().join(u' ').contains(u"another program writes"));
    EXPECT_EQ(device.value(u"SELECT count(*) FROM MTM"_s), u"0"_s);
    writer.write("-02|b|\n");
    writer.close();
    const ImportResult result = load(u"MTM.RVN");
    EXPECT_EQ(result.loaded, 2);
    EXPECT_FALSE(result.isLastLineCut);
    EXPECT_EQ(device.value(u"SELECT group_concat(DDate || Gubun) FROM MTM"_s), u"2004-03-02a,2004-03-02b"_s);
}

TEST_F(MasterImportTest, ALastLineThatIsCutIsLoadedAndNamed) {
    const std::pair<QByteArray, bool> cases[] = {{"0001|a|1|\n0002|b|2|", false},
                                                 {"0001|a|1|\n0002|b|2", true},
                                                 {"0001|a|1|\n0002|b|2\n", false},
                                                 {"0001|a|1|\n00", true},
                                                 {"", false},
                                                 {"0001|a|1|\n0002x\xB0", true}};
    for (const auto& [content, isCut] : cases) {
        write(u"GARAEMAJIN.RVN", content);
        const ImportResult result = load(u"GARAEMAJIN.RVN");
        EXPECT_EQ(result.isLastLineCut, isCut) << content.constData();
        EXPECT_EQ(result.loaded + result.rejected, content.isEmpty() ? 0 : 2) << content.constData();
    }
}

TEST_F(MasterImportTest, AFileOfTheSameContentIsNotLoadedAgain) {
    const QByteArray content = "0001|a|1|\n0002|b|2|\n";
    const auto again = [&](const QByteArray& lines) {
        write(u"GARAEMAJIN.RVN", lines);
        return load(u"GARAEMAJIN.RVN").outcome;
    };
    EXPECT_EQ(again(content), Loaded);
    device.execute(u"UPDATE GARAEMAJIN SET Majin = '9'"_s);
    EXPECT_EQ(again(content), Unchanged);
    EXPECT_FALSE(QFile::exists(onDisk(u"GARAEMAJIN.RVN")));
    EXPECT_EQ(margins(), QStringList({u"0001/a/9"_s, u"0002/b/9"_s})) << "not a row was written";
    device.execute(u"DELETE FROM GARAEMAJIN WHERE GCode = '0001'"_s);
    EXPECT_EQ(again(content), Loaded) << "rows are missing";
    EXPECT_EQ(again("0003|'|1|\n0002|b|2|\n"), Loaded);
    EXPECT_EQ(again("0003|'|1|\n0002|b|2|\n"), Loaded) << "its rejected lines are told again";
    // A payment moves what GARAE holds, and orders are added.
    for (const QStringView name : {u"GARAE.RVN", u"MTM.RVN"}) {
        for (int pass = 0; pass < 2; ++pass) {
            write(name, "0001|a|1|\n");
            EXPECT_EQ(load(name).outcome, Loaded);
        }
    }
}

TEST_F(MasterImportTest, OldDataIsNamedUntilNewComes) {
    const QDate today(2026, 11, 21);
    const auto import = [&](QStringView name, QDate day, QDate changed, const QByteArray& content) {
        write(name, content);
        QFile waiting(onDisk(name));
        ASSERT_TRUE(waiting.open(QIODevice::ReadWrite));
        ASSERT_TRUE(waiting.setFileTime(QDateTime(changed, QTime(7, 0)), QFileDevice::FileModificationTime));
        waiting.close();
        platform::clock::set(QDateTime(day, QTime(8, 0)));
        EXPECT_TRUE(load(name).isInTable());
        platform::clock::set({});
    };
    const auto old = [&] {
        QStringList named;
        for (const OldData& each : oldMasterData(today))
            named << each.fileName.toString() + u' ' + QString::number(each.days);
        return named.join(u',');
    };
    EXPECT_EQ(old(), QString()) << "nothing was ever loaded";
    import(u"GARAE.RVN", today.addDays(-30), today.addDays(-30), "0001|a|\n");
    import(u"GARAEMAJIN.RVN", today.addDays(-8), today.addDays(-8), "0001|a|1|\n");
    import(u"PUMMOK.RVN", today.addDays(-7), today.addDays(-9), "0001|a|1|\n");
    EXPECT_EQ(old(), u"GARAEMAJIN.RVN 8"_s);
    import(u"GARAEMAJIN.RVN", today, today.addDays(-8), "0001|a|1|\n");
    EXPECT_EQ(old(), QString()) << "the same prices, sent again";
    for (int pass = 0; pass < 2; ++pass) {
        import(u"GARAE.RVN", today, today.addDays(-31), "0001|b|\n");
        EXPECT_EQ(old(), u"GARAE.RVN 0"_s) << "also after the second time";
    }
    import(u"GARAE.RVN", today, today.addDays(-30), "0001|c|\n");
    EXPECT_EQ(old(), QString());
    // How many rows a table would lose.
    device.execute(
        u"DELETE FROM GARAE; INSERT INTO GARAE (GCODE) VALUES ('1'), ('2'), ('3'), ('4'), ('5')"_s);
    for (const auto& [lines, isAsked] : {std::pair(3, false), {2, true}, {0, true}}) {
        write(u"GARAE.RVN", QByteArray("0001|\n").repeated(lines));
        EXPECT_EQ(findShrinkage(file(u"GARAE.RVN"), kDocuments).has_value(), isAsked) << lines;
    }
    device.execute(u"DELETE FROM GARAE; INSERT INTO MTM (DDate) VALUES ('1')"_s);
    EXPECT_FALSE(findShrinkage(file(u"GARAE.RVN"), kDocuments)) << "an empty table loses nothing";
    write(u"MTM.RVN", "");
    EXPECT_FALSE(findShrinkage(file(u"MTM.RVN"), kDocuments)) << "orders are added";
}

// The ledger knows the file by then, so its orders are not added a second time.
TEST_F(MasterImportTest, AFileThatCannotBeDeletedIsLoadedOnce) {
    write(u"MTM.RVN", "2004-03-02|a|\n", kCard);
    const auto allow = [](QStringView handheld, mode_t mode) {
        return ::chmod(QFile::encodeName(platform::device::path(handheld)).constData(), mode) == 0;
    };
    // Permissions bind the superuser only without his privileges, so the loading runs as nobody then.
    const uid_t user = ::geteuid();
    ASSERT_TRUE(allow(u"\\", 0755) && allow(platform::device::kDocumentsFolder, 0777) &&
                allow(platform::device::kDatabaseFile, 0666) &&
                allow(importPath(file(u"MTM.RVN"), kCard), 0666) &&
                allow(platform::device::kStorageCardFolder, 0555));
    ASSERT_EQ(user == 0 ? ::seteuid(65534) : 0, 0);

    const ImportResult first = load(u"MTM.RVN", kCard);
    const ImportResult second = load(u"MTM.RVN", kCard);
    ASSERT_EQ(::seteuid(user), 0);
    ASSERT_TRUE(allow(platform::device::kStorageCardFolder, 0755));
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

TEST_F(MasterImportTest, WhoPutsFilesAtTheSameTimeIsWaitedFor) {
    std::optional<ImportLock> other(std::in_place);
    EXPECT_TRUE(ImportLock().isTaken());
    EXPECT_TRUE(ImportLock(1).isTaken());
    const std::jthread end([&] { other.reset(); });
    EXPECT_FALSE(ImportLock(60'000).isTaken());
}

}  // namespace
}  // namespace db
