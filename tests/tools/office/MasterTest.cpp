#include <QFile>

#include "books/CollectionSlip.h"
#include "db/ImportFile.h"
#include "db/MasterImport.h"
#include "platform/CodePage.h"
#include "platform/adoce/DatabaseFile.h"
#include "tools/office/SyncTest.h"

namespace test {
namespace {

class MasterTest : public SyncTest {
  protected:
    /// Lines of GARAE.RVN for customers, each "code salesman balance".
    static QString customers(const QStringList& customers) {
        QString lines;
        for (const QString& each : customers) {
            const QStringList is = each.split(u' ');
            lines += u"%1|상회 %1|대표|||0||%3||서울|1|02|1|ㅅ|%2||\r\n"_s.arg(is[0], is[1], is[2]);
        }
        return lines;
    }
    QString file(const QString& name, const QString& lines) {
        return writeFile(name, *platform::codepage::encode(lines));
    }
    void load(const QString& name, const QString& lines, const QStringList& more = {u"--shrink"_s}) {
        const Ended ended = run(QStringList{u"load"_s, file(name, lines)} + more);
        ASSERT_EQ(ended.exitCode, 0) << ended.err;
    }
    void loadCustomers(const QStringList& each) { load(u"GARAE.RVN"_s, customers(each)); }

    static QString waiting(const TestDevice& terminal, const QString& name = u"GARAE.RVN"_s) {
        return *platform::codepage::decode(readFile(terminal.folder() + u"/My Documents/"_s + name));
    }
    /// What a login does with the waiting files.
    static void logIn(const TestDevice& terminal) {
        platform::device::setFolder(terminal.folder());
        for (const db::ImportFile& file : db::importFiles()) {
            const auto source = db::findImportFile(file);
            EXPECT_TRUE(source == db::ImportSource::None || db::importFile(file, source, {}).isInTable());
        }
        platform::adoce::DatabaseFile::forgetAll();
    }
};

TEST_F(MasterTest, TheyComeWholeAndOnce) {
    const TestDevice& terminal = enrol(u"1"_s, {u"A"_s, u"B"_s});
    const QString product =
        u"1001|맥주|1|500|20|1|2|3|4|5|6|7|8|9|10|11|12|13|14|15|16|17|18|%1|1||ㅁ|\r\n"_s;
    loadCustomers({u"0001 A 5000"_s, u"0002 B 0"_s, u"0003 C 9"_s});
    load(u"PUMMOK.RVN"_s, product.arg(u"01"));
    load(u"GARAEMAJIN.RVN"_s, u"0001|01|5|\r\n0003|01|7|\r\n"_s);
    load(u"BARCODE.RVN"_s, u"1001|8801234567890|\r\n"_s);
    EXPECT_THAT(synced(terminal), HasSubstr("fetched BARCODE.RVN, GARAE.RVN, GARAEMAJIN.RVN, PUMMOK.RVN"));
    EXPECT_EQ(waiting(terminal, u"BARCODE.RVN"_s), u"1001|8801234567890|\r\n"_s);
    EXPECT_EQ(waiting(terminal), customers({u"0001 A 5000"_s, u"0002 B 0"_s}));
    EXPECT_EQ(waiting(terminal, u"GARAEMAJIN.RVN"_s), u"0001|01|5|\r\n"_s);
    EXPECT_EQ(synced(terminal), kNothing);
    logIn(terminal);
    EXPECT_EQ(synced(terminal), kNothing);
    EXPECT_EQ(on(terminal, u"SELECT COUNT(*), SUM(CJMONEY) FROM GARAE"_s), QStringList(u"2|5000"_s));
    // Another's data are no reason to fetch; one's own are, and so is a table that was not loaded from the
    // file.
    load(u"GARAEMAJIN.RVN"_s, u"0001|01|5|\r\n0003|01|8|\r\n"_s);
    EXPECT_EQ(synced(terminal), kNothing);
    load(u"PUMMOK.RVN"_s, product.arg(u"02"));
    on(terminal, u"UPDATE MASTERLOAD SET Modified = '1' WHERE FileName = 'GARAEMAJIN.RVN'"_s);
    EXPECT_THAT(synced(terminal), HasSubstr("fetched GARAEMAJIN.RVN, PUMMOK.RVN"));
    logIn(terminal);
    EXPECT_EQ(on(terminal, u"SELECT JGubun FROM PUMMOK"_s), QStringList(u"02"_s));
    // A customer who moves to its salesman comes with his prices, and goes with them to another's.
    const QStringList ours{u"0001 A 5000"_s, u"0002 B 0"_s};
    for (const QString& salesman : {u"B"_s, u"C"_s}) {
        loadCustomers(ours + QStringList(u"0003 %1 9"_s.arg(salesman)));
        EXPECT_THAT(synced(terminal), HasSubstr("fetched GARAE.RVN, GARAEMAJIN.RVN"));
        for (const QString& name : {u"GARAE.RVN"_s, u"GARAEMAJIN.RVN"_s})
            EXPECT_EQ(waiting(terminal, name).contains(u"0003"), salesman == u"B");
        logIn(terminal);
    }
    // A salesman goes and comes with his customers.
    for (const auto& [users, theirs] : {std::pair{u"B"_s, ours.mid(1)}, {u"A,B"_s, ours}}) {
        enrolFolder(terminal.folder(), u"1"_s, {users});
        synced(terminal);
        EXPECT_EQ(waiting(terminal), customers(theirs));
        logIn(terminal);
    }
}

TEST_F(MasterTest, ANewerFileThatWaitsStays) {
    const TestDevice& terminal = enrol();
    loadCustomers({u"0001 A 5000"_s});
    const auto put = [&](const QString& folder, int days) {
        QFile file(terminal.folder() + folder + u"/GARAE.RVN"_s);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("0001|") == 5 && file.flush());
        file.setFileTime(QDateTime::currentDateTime().addDays(days), QFile::FileModificationTime);
    };
    put(u"/My Documents"_s, 1);
    const Ended ended = sync(terminal);
    EXPECT_THAT(ended.out, Not(HasSubstr("fetched")));
    EXPECT_THAT(ended.err, HasSubstr("GARAE.RVN waits"));
    EXPECT_EQ(waiting(terminal), u"0001|"_s);
    put(u"/My Documents"_s, -1);
    {
        platform::device::setFolder(terminal.folder());
        const db::ImportLock loading;
        EXPECT_THAT(synced(terminal), Not(HasSubstr("fetched")));
    }
    put(u"/저장소카드"_s, -1);
    EXPECT_THAT(synced(terminal), Not(HasSubstr("fetched")));
    QFile::remove(terminal.folder() + u"/저장소카드/GARAE.RVN"_s);
    EXPECT_THAT(synced(terminal), HasSubstr("fetched GARAE.RVN"));
    EXPECT_EQ(waiting(terminal), customers({u"0001 A 5000"_s}));
}

TEST_F(MasterTest, BalancesAreTheOfficesAndWhatAllHaveSent) {
    const TestDevice& mine = enrol();
    const TestDevice& colleagues = enrol(u"2"_s, {u"B"_s});
    loadCustomers({u"0001 A 5000"_s});
    const QString old = QDate::currentDate().addDays(-40).toString(Qt::ISODate);
    collect(mine, u"4001"_s, u"0001"_s, 100);
    on(mine, u"UPDATE MTMOK SET DDate = '%1'"_s.arg(old));
    synced(mine);
    logIn(mine);
    synced(mine);
    // One's own slips are in one's own balances.
    collect(mine, u"5001"_s, u"0001"_s, 100);
    EXPECT_THAT(synced(mine), Not(HasSubstr("fetched")));
    collect(colleagues, u"5001"_s, u"0001"_s, 7000, 0, u"B"_s);
    synced(colleagues);
    EXPECT_THAT(synced(mine), HasSubstr("fetched GARAE.RVN"));
    EXPECT_EQ(waiting(mine), customers({u"0001 A 12200"_s}));
    // What changes in an old day counts as well, though the old days have been looked at today.
    on(mine,
       u"DELETE FROM MTMOK WHERE JunNo = '4001'; INSERT INTO DELETED VALUES ('%1','입금표','4001','A',"
       "'0001','상회','0','A','%1 11:00:00')"_s.arg(old));
    // A slip that is saved before the login is not in the file, which would take its balance back: it goes,
    // also when the office cannot be reached.
    collect(mine, u"5002"_s, u"0001"_s, 30);
    const QByteArray port = "port = " + QByteArray::number(cluster().port());
    changeAccess(mine, port, "port = 1");
    EXPECT_EQ(sync(mine).exitCode, 1);
    EXPECT_EQ(waiting(mine), QString());
    changeAccess(mine, "port = 1", port);
    synced(mine);
    EXPECT_EQ(waiting(mine), customers({u"0001 A 12130"_s}));
    // The load of new balances has all that was sent, or only what was sent until then.
    loadCustomers({u"0001 A 12130"_s});
    synced(mine);
    EXPECT_EQ(waiting(mine), customers({u"0001 A 12130"_s}));
    collect(mine, u"5003"_s, u"0001"_s, 7);
    synced(mine);
    load(u"GARAE.RVN"_s, customers({u"0001 A 1"_s}), {u"--sent-until"_s, u"2020-01-01 00:00"_s});
    synced(mine);
    EXPECT_EQ(waiting(mine), customers({u"0001 A 8"_s}));
    logIn(mine);
    // An older copy has come back, and balances with what it has lost: they count it once.
    on(mine, u"DELETE FROM MTMOK"_s);
    collect(colleagues, u"5002"_s, u"0001"_s, 7000, 0, u"B"_s);
    synced(colleagues);
    synced(mine);
    EXPECT_EQ(waiting(mine), customers({u"0001 A 7008"_s}));
    logIn(mine);
    EXPECT_THAT(synced(mine, {u"--recover"_s}), HasSubstr("gave back 3 documents"));
    logIn(mine);
    EXPECT_EQ(on(mine, u"SELECT CJMONEY FROM GARAE"_s), QStringList(u"7008"_s));
}

TEST_F(MasterTest, BalancesThatAreTheirOwnNoMoreComeAnew) {
    const TestDevice& mine = enrol();
    loadCustomers({u"0001 A 5000"_s, u"0002 B 0"_s});
    synced(mine);
    // Saved and taken back by a login before the next sync: nobody can tell which of them was first.
    collect(mine, u"5001"_s, u"0001"_s, 100);
    logIn(mine);
    EXPECT_THAT(synced(mine), HasSubstr("fetched GARAE.RVN"));
    EXPECT_EQ(waiting(mine), customers({u"0001 A 5100"_s}));
    logIn(mine);
    EXPECT_EQ(synced(mine), kNothing);
    collect(mine, u"5002"_s, u"0001"_s, 30);
    EXPECT_THAT(synced(mine), Not(HasSubstr("fetched")));
    // The customer has paid the office what he owed for both: his line is the one of before.
    const QStringList same{u"0001 A 5000"_s, u"0002 B 1"_s};
    loadCustomers(same);
    EXPECT_THAT(synced(mine), HasSubstr("fetched GARAE.RVN"));
    EXPECT_EQ(waiting(mine), customers({u"0001 A 5000"_s}));
    logIn(mine);
    EXPECT_EQ(synced(mine), kNothing);
    // All lines are those of before: a cron job may load one file often, so what was sent goes on counting
    // unless it is said to be in the balances.
    collect(mine, u"5003"_s, u"0001"_s, 7);
    synced(mine);
    EXPECT_THAT(run({u"load"_s, file(u"GARAE.RVN"_s, customers(same))}).out, HasSubstr("--sent-until"));
    EXPECT_EQ(sql(u"SELECT sum(balance) FROM report.receivable"_s), QStringList(u"5008"_s));
    const QStringList now = sql(u"SELECT to_char(now(), 'YYYY-MM-DD HH24:MI:SS.US')"_s);
    load(u"GARAE.RVN"_s, customers(same), {u"--sent-until"_s, now.first()});
    synced(mine);
    EXPECT_EQ(waiting(mine), customers({u"0001 A 5000"_s}));
}

TEST_F(MasterTest, BalancesOfWhatIsGoneAgainAreNotTakenBackTwice) {
    const TestDevice& mine = enrol();
    const TestDevice& colleagues = enrol(u"2"_s, {u"B"_s});
    loadCustomers({u"0001 A 5000"_s});
    synced(mine);
    logIn(mine);
    books::CollectionSlip slip;
    slip.DDate = day_;
    slip.GCode = u"0001"_s;
    slip.JunNo = u"7001"_s;
    slip.UserID = u"A"_s;
    slip.MisuInMoney = platform::Won(700);
    slip.CardMoney = platform::Won(700);
    const auto takeBack = [&] {
        // While the host is still to be asked, nothing is known.
        EXPECT_EQ(synced(mine), kNothing);
        return books::takeBackCollection(day_, u"7001"_s, u"A"_s);
    };
    const auto remove = [&] { return books::removeCollection(day_, u"7001"_s, u"A"_s); };
    // It comes after the file and is in the balances that the file replaces; what is left looks as if it had
    // never been. One on its way to the card the office does not even see.
    const auto saveAndLose = [&](auto save, auto lose, const QString& number) {
        collect(colleagues, number, u"0001"_s, 1000, 0, u"B"_s);
        synced(colleagues);
        EXPECT_THAT(synced(mine), HasSubstr("fetched GARAE.RVN"));
        platform::device::setFolder(mine.folder());
        EXPECT_TRUE(save(slip));
        logIn(mine);
        EXPECT_TRUE(lose());
        platform::adoce::DatabaseFile::forgetAll();
        EXPECT_THAT(synced(mine), HasSubstr("fetched GARAE.RVN"));
        logIn(mine);
        EXPECT_EQ(synced(mine), kNothing);
        EXPECT_EQ(on(mine, u"SELECT CJMONEY FROM GARAE"_s), sql(u"SELECT balance FROM report.receivable"_s));
    };
    saveAndLose(books::saveForCard, takeBack, u"5001"_s);
    saveAndLose(books::saveCollection, remove, u"5002"_s);
    // In a day that is looked at once a day it is found then.
    const auto forget = [&] { return QFile::remove(mine.folder() + u"/office/swept"_s); };
    slip.DDate = QDate::currentDate().addDays(-40).toString(Qt::ISODate);
    saveAndLose(books::saveCollection, forget, u"5003"_s);
}

TEST_F(MasterTest, ASyncThatEndsBeforeItsFileHasItsNameLeavesOneOfOurs) {
    const TestDevice& mine = enrol();
    const TestDevice& colleagues = enrol(u"2"_s, {u"B"_s});
    loadCustomers({u"0001 A 5000"_s});
    synced(mine);
    const QString path = mine.folder() + u"/My Documents/GARAE.RVN"_s;
    const auto fetchButKeep = [&](const QString& number, int won) {
        ASSERT_TRUE(QFile::rename(path, path + u".before"_s) && QFile::copy(path + u".before"_s, path));
        collect(colleagues, number, u"0001"_s, won, 0, u"B"_s);
        synced(colleagues);
        EXPECT_THAT(synced(mine), HasSubstr("fetched GARAE.RVN"));
        ASSERT_TRUE(QFile::remove(path) && QFile::rename(path + u".before"_s, path));
    };
    fetchButKeep(u"5001"_s, 1000);
    const Ended ended = sync(mine);
    EXPECT_THAT(ended.out, HasSubstr("fetched GARAE.RVN"));
    EXPECT_EQ(ended.err, "");
    EXPECT_EQ(waiting(mine), customers({u"0001 A 6000"_s}));
    // Its balances are those of long ago, which a login is not to load while there is no line.
    fetchButKeep(u"5002"_s, 100);
    changeAccess(mine, "port = " + QByteArray::number(cluster().port()), "port = 1");
    EXPECT_EQ(sync(mine).exitCode, 1);
    EXPECT_EQ(waiting(mine), QString());
}

TEST_F(MasterTest, AnOrderComesOnce) {
    const TestDevice& terminal = enrol();
    const auto order = [&](const QString& number, const QString& user = u"A"_s) {
        return u"%1|매출|0001|상회|%2|미처리|1001|맥주|01|1|0|10|1|0|0|%3|\r\n"_s.arg(day_, number, user);
    };
    sell(terminal, u"5003"_s, u"0001"_s, 1);
    noteDeletion(terminal, u"거래명세서"_s, u"5002"_s);
    // A file may have the orders of the one before again.
    load(u"MTM.RVN"_s, order(u"5001"_s));
    load(u"MTM.RVN"_s, order(u"5001"_s) + order(u"5002"_s) + order(u"5003"_s) + order(u"5001"_s, u"B"_s));
    EXPECT_THAT(synced(terminal), HasSubstr("fetched MTM.RVN"));
    EXPECT_EQ(waiting(terminal, u"MTM.RVN"_s), order(u"5001"_s));
    load(u"MTM.RVN"_s, order(u"5004"_s));
    // One that waits is left alone, whether it is loaded before the next sync or not.
    EXPECT_THAT(synced(terminal), Not(HasSubstr("fetched")));
    logIn(terminal);
    synced(terminal);
    EXPECT_EQ(waiting(terminal, u"MTM.RVN"_s), order(u"5004"_s));
    logIn(terminal);
    for (int i = 0; i < 2; ++i) EXPECT_THAT(synced(terminal), Not(HasSubstr("fetched")));
    EXPECT_EQ(on(terminal, u"SELECT JunNo, COUNT(*) FROM MTM GROUP BY 1 ORDER BY 1"_s),
              QStringList({u"5001|1"_s, u"5003|1"_s, u"5004|1"_s}));
}

TEST_F(MasterTest, WhatNoTerminalWouldTakeIsNamedAndNothingIsLoaded) {
    // Equal rows stand as often as in the file.
    const auto standing = [&] {
        return sql(
            u"SELECT string_agg(gcode, ' ' ORDER BY row_number) FROM office.master_garae "
            "WHERE last_version IS NULL"_s);
    };
    loadCustomers({u"0001 A 1"_s, u"0001 A 1"_s, u"0002 A 2"_s, u"0003 A 3"_s, u"0004 A 4"_s});
    loadCustomers({u"0002 A 2"_s, u"0001 A 1"_s, u"0003 A 3"_s, u"0004 A 4"_s});
    const auto refused = [&](const QString& name, const QByteArray& content, const char* reason) {
        const QString good = file(u"BARCODE.RVN"_s, u"1001|8801234567890|\r\n"_s);
        const Ended ended = run({u"load"_s, good, writeFile(name, content)});
        EXPECT_EQ(ended.exitCode, 1) << reason;
        EXPECT_THAT(ended.err, HasSubstr(reason));
    };
    const QByteArray line = "0001|A|||||2026-11-20|1000|0|||||A|A||\n";
    refused(u"GARAE.RVN"_s, line + "0002|\xFF\xFF|\n", "line 2 is not code page 949");
    refused(u"GARAE.RVN"_s, line + "0002|O'Neill|||||2026-11-20|0|0|||||A|A||\n", "line 2 holds a single");
    refused(u"GARAE.RVN"_s, line + "0002|B|||", "line 2 breaks off");
    const QByteArray heading =
        "GCODE,GNAME,GUPJU,ENDDATE,SNO,MAJIN,CJDATE,CJMONEY,TTMONEY,JUSO,GUBUN,TEL,BGGUBUN,SEEK,USERID,"
        "CARDNO\n";
    refused(u"garae.csv"_s, heading + "1,A,,,,,,0,,,,,,A,A,\n", "line 2 does not fit into a line");
    refused(u"garae.csv"_s, "GCODE\n0001\n", "GNAME is missing");
    // One that would nearly empty its table has to be meant.
    refused(u"GARAE.RVN"_s, line, "--shrink");
    EXPECT_EQ(standing(), QStringList(u"0002 0001 0003 0004"_s));
    EXPECT_EQ(sql(u"SELECT max(version) FROM office.master_version"_s), QStringList(u"2"_s));

    EXPECT_EQ(run({u"load"_s, u"--shrink"_s,
                   writeFile(u"garae.csv"_s, heading + "0001,A,,,,,2026-11-20,1000,0,,,,,A,A,\n")})
                  .exitCode,
              0);
    EXPECT_EQ(standing(), QStringList(u"0001"_s));
    EXPECT_THAT(run({u"load"_s, writeFile(u"GARAE.RVN"_s, line)}).out, HasSubstr("has these lines already"));
}

}  // namespace
}  // namespace test
