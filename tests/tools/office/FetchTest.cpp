#include "db/ImportFile.h"
#include "db/MasterImport.h"
#include "platform/CodePage.h"
#include "platform/adoce/DatabaseFile.h"
#include "tools/office/SyncTest.h"

namespace test {
namespace {

class FetchTest : public SyncTest {
  protected:
    void load(const QString& name, const QString& lines) {
        const OfficeEnded ended =
            run({u"load"_s, u"--shrink"_s, writeFile(name, *platform::codepage::encode(lines))});
        ASSERT_EQ(ended.exitCode, 0) << ended.err;
    }
    QString customer(const QString& code, const QString& user, int balance) const {
        return u"%1|상회 %1|대표|||0||%3||서울|1|02|1|ㅅ|%2||\r\n"_s.arg(code, user).arg(balance);
    }
    QString waiting(const TestDevice& terminal, const QString& name = u"GARAE.RVN"_s) const {
        QFile file(terminal.folder() + u"/My Documents/"_s + name);
        return file.open(QIODevice::ReadOnly) ? platform::codepage::decode(file.readAll()).value_or(QString())
                                              : QString();
    }
    /// What a login does with the waiting files.
    void logIn(const TestDevice& terminal) {
        platform::device::setFolder(terminal.folder());
        for (const db::ImportFile& file : db::importFiles()) {
            if (const auto source = db::findImportFile(file); source != db::ImportSource::None) {
                EXPECT_TRUE(db::importFile(file, source, {}).isInTable())
                    << file.fileName.toUtf8().constData();
            }
        }
        platform::adoce::DatabaseFile::forgetAll();
    }
};

TEST_F(FetchTest, MasterDataComeWholeAndOnce) {
    TestDevice& terminal = enrol(u"1"_s, {u"A"_s, u"B"_s});
    load(u"GARAE.RVN"_s,
         customer(u"0001"_s, u"A"_s, 5000) + customer(u"0002"_s, u"B"_s, 0) + customer(u"0003"_s, u"C"_s, 9));
    load(u"PUMMOK.RVN"_s, u"1001|맥주|1|500|20|1|2|3|4|5|6|7|8|9|10|11|12|13|14|15|16|17|18|01|1||ㅁ|\r\n"_s);
    load(u"GARAEMAJIN.RVN"_s, u"0001|01|5|\r\n0003|01|7|\r\n"_s);
    load(u"BARCODE.RVN"_s, u"1001|8801234567890|\r\n"_s);
    EXPECT_NE(synced(terminal).find("fetched BARCODE.RVN, GARAE.RVN, GARAEMAJIN.RVN, PUMMOK.RVN"),
              std::string::npos);
    EXPECT_EQ(waiting(terminal, u"BARCODE.RVN"_s), u"1001|8801234567890|\r\n"_s);
    EXPECT_EQ(waiting(terminal), customer(u"0001"_s, u"A"_s, 5000) + customer(u"0002"_s, u"B"_s, 0));
    EXPECT_EQ(waiting(terminal, u"GARAEMAJIN.RVN"_s), u"0001|01|5|\r\n"_s);
    const std::string nothing = "sent 0, deleted 0, waiting 0\n";
    EXPECT_EQ(synced(terminal), nothing);
    logIn(terminal);
    EXPECT_EQ(synced(terminal), nothing);
    EXPECT_EQ(on(terminal, u"SELECT COUNT(*), SUM(CJMONEY) FROM GARAE"_s),
              QList<QStringList>({{u"2"_s, u"5000"_s}}));
    // Another's data are no reason to fetch; one's own are, and so is a table that was not loaded from the
    // file.
    load(u"GARAEMAJIN.RVN"_s, u"0001|01|5|\r\n0003|01|8|\r\n"_s);
    EXPECT_EQ(synced(terminal), nothing);
    load(u"PUMMOK.RVN"_s, u"1001|맥주|1|500|20|1|2|3|4|5|6|7|8|9|10|11|12|13|14|15|16|17|18|02|1||ㅁ|\r\n"_s);
    on(terminal, u"UPDATE MASTERLOAD SET Modified = '1' WHERE FileName = 'GARAEMAJIN.RVN'"_s);
    EXPECT_NE(synced(terminal).find("fetched GARAEMAJIN.RVN, PUMMOK.RVN"), std::string::npos);
    logIn(terminal);
    EXPECT_EQ(on(terminal, u"SELECT JGubun FROM PUMMOK"_s), QList<QStringList>({{u"02"_s}}));
}

TEST_F(FetchTest, ANewerFileThatWaitsStays) {
    TestDevice& terminal = enrol(u"1"_s);
    load(u"GARAE.RVN"_s, customer(u"0001"_s, u"A"_s, 5000));
    const auto put = [&](const QString& path, const QDateTime& modified) {
        platform::device::setFolder(terminal.folder());
        terminal.writeFile(path, "0001|");
        QFile file(platform::device::path(path));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(modified, QFile::FileModificationTime));
    };
    const QString path = u"\\My Documents\\GARAE.RVN"_s;
    put(path, QDateTime::currentDateTime().addSecs(60));
    const OfficeEnded ended = sync(terminal);
    EXPECT_EQ(ended.out.find("fetched"), std::string::npos);
    EXPECT_NE(ended.err.find("GARAE.RVN waits"), std::string::npos) << ended.err;
    EXPECT_EQ(waiting(terminal), u"0001|"_s);
    put(path, QDateTime::currentDateTime().addDays(-1));
    {
        const db::ImportLock loading;
        EXPECT_EQ(synced(terminal).find("fetched"), std::string::npos);
    }
    put(u"\\저장소카드\\GARAE.RVN"_s, QDateTime::currentDateTime().addDays(-1));
    EXPECT_EQ(synced(terminal).find("fetched"), std::string::npos);
    QFile::remove(terminal.folder() + u"/저장소카드/GARAE.RVN"_s);
    EXPECT_NE(synced(terminal).find("fetched GARAE.RVN"), std::string::npos);
    EXPECT_EQ(waiting(terminal), customer(u"0001"_s, u"A"_s, 5000));
}

TEST_F(FetchTest, BalancesAreTheOfficesAndWhatAllHaveSent) {
    TestDevice& mine = enrol(u"1"_s);
    TestDevice& colleagues = enrol(u"2"_s, {u"B"_s});
    load(u"GARAE.RVN"_s, customer(u"0001"_s, u"A"_s, 5000));
    synced(mine);
    logIn(mine);
    synced(mine);
    // One's own slips are in one's own balances.
    collect(mine, u"5001"_s, u"0001"_s, 100);
    EXPECT_EQ(synced(mine).find("fetched"), std::string::npos);
    collect(colleagues, u"5001"_s, u"0001"_s, 7000, 0, u"B"_s);
    synced(colleagues);
    EXPECT_NE(synced(mine).find("fetched GARAE.RVN"), std::string::npos);
    EXPECT_EQ(waiting(mine), customer(u"0001"_s, u"A"_s, 12100));
    // A slip that is saved before the login is not in the file, which would take its balance back: it goes,
    // also when the office cannot be reached.
    collect(mine, u"5002"_s, u"0001"_s, 30);
    const QByteArray port = QByteArray::number(cluster().port());
    changeAccess(mine.folder(), "port = " + port, "port = 1");
    EXPECT_EQ(sync(mine).exitCode, 1);
    EXPECT_EQ(waiting(mine), QString());
    changeAccess(mine.folder(), "port = 1", "port = " + port);
    synced(mine);
    EXPECT_EQ(waiting(mine), customer(u"0001"_s, u"A"_s, 12130));
    // The load of new balances has all that was sent.
    load(u"GARAE.RVN"_s, customer(u"0001"_s, u"A"_s, 12130));
    synced(mine);
    EXPECT_EQ(waiting(mine), customer(u"0001"_s, u"A"_s, 12130));
}

TEST_F(FetchTest, BalancesThatAreTheirOwnNoMoreComeAnew) {
    TestDevice& mine = enrol(u"1"_s);
    load(u"GARAE.RVN"_s, customer(u"0001"_s, u"A"_s, 5000) + customer(u"0002"_s, u"B"_s, 0));
    synced(mine);
    // Saved and taken back by a login before the next sync: nobody can tell which of them was first.
    collect(mine, u"5001"_s, u"0001"_s, 100);
    logIn(mine);
    EXPECT_NE(synced(mine).find("fetched GARAE.RVN"), std::string::npos);
    EXPECT_EQ(waiting(mine), customer(u"0001"_s, u"A"_s, 5100));
    logIn(mine);
    const std::string nothing = "sent 0, deleted 0, waiting 0\n";
    EXPECT_EQ(synced(mine), nothing);
    collect(mine, u"5002"_s, u"0001"_s, 30);
    EXPECT_EQ(synced(mine).find("fetched"), std::string::npos);
    // The customer has paid the office what he owed for both: his line is the one of before.
    load(u"GARAE.RVN"_s, customer(u"0001"_s, u"A"_s, 5000) + customer(u"0002"_s, u"B"_s, 1));
    EXPECT_NE(synced(mine).find("fetched GARAE.RVN"), std::string::npos);
    EXPECT_EQ(waiting(mine), customer(u"0001"_s, u"A"_s, 5000));
    logIn(mine);
    EXPECT_EQ(synced(mine), nothing);
    // All lines are those of before: a cron job may load one file often, so what was sent goes on counting
    // unless it is said to be in the balances.
    const QString same = customer(u"0001"_s, u"A"_s, 5000) + customer(u"0002"_s, u"B"_s, 1);
    collect(mine, u"5003"_s, u"0001"_s, 7);
    synced(mine);
    const QString file = writeFile(u"GARAE.RVN"_s, *platform::codepage::encode(same));
    EXPECT_NE(run({u"load"_s, file}).out.find("--sent-until"), std::string::npos);
    EXPECT_EQ(sql(u"SELECT sum(balance) FROM report.receivable"_s), QStringList(u"5008"_s));
    const QStringList now = sql(u"SELECT to_char(now(), 'YYYY-MM-DD HH24:MI:SS.US')"_s);
    EXPECT_EQ(run({u"load"_s, file, u"--sent-until"_s, now.first()}).exitCode, 0);
    synced(mine);
    EXPECT_EQ(waiting(mine), customer(u"0001"_s, u"A"_s, 5000));
}

TEST_F(FetchTest, ASalesmanWhoComesBringsHisCustomers) {
    TestDevice& terminal = enrol(u"1"_s);
    load(u"GARAE.RVN"_s, customer(u"0001"_s, u"A"_s, 5000) + customer(u"0002"_s, u"B"_s, 7));
    synced(terminal);
    logIn(terminal);
    enrolFolder(terminal.folder(), u"1"_s, {u"A"_s, u"B"_s});
    synced(terminal);
    EXPECT_EQ(waiting(terminal), customer(u"0001"_s, u"A"_s, 5000) + customer(u"0002"_s, u"B"_s, 7));
    logIn(terminal);
    enrolFolder(terminal.folder(), u"1"_s, {u"B"_s});
    synced(terminal);
    EXPECT_EQ(waiting(terminal), customer(u"0002"_s, u"B"_s, 7));
}

TEST_F(FetchTest, RecoveredSlipsAreInTheBalancesOnce) {
    TestDevice& terminal = enrol(u"1"_s);
    TestDevice& colleagues = enrol(u"2"_s, {u"B"_s});
    load(u"GARAE.RVN"_s, customer(u"0001"_s, u"A"_s, 5000));
    synced(terminal);
    logIn(terminal);
    collect(terminal, u"5001"_s, u"0001"_s, 100);
    synced(terminal);
    // An older copy has come back, and balances with what it has lost.
    on(terminal, u"DELETE FROM MTMOK"_s);
    collect(colleagues, u"5001"_s, u"0001"_s, 7000, 0, u"B"_s);
    synced(colleagues);
    synced(terminal);
    EXPECT_EQ(waiting(terminal), customer(u"0001"_s, u"A"_s, 12100));
    logIn(terminal);
    EXPECT_NE(synced(terminal, {u"--recover"_s}).find("gave back 1 documents"), std::string::npos);
    logIn(terminal);
    EXPECT_EQ(on(terminal, u"SELECT CJMONEY FROM GARAE"_s), QList<QStringList>({{u"12100"_s}}));
}

TEST_F(FetchTest, WhatChangesInAnOldDayIsInTheBalances) {
    TestDevice& mine = enrol(u"1"_s);
    TestDevice& colleagues = enrol(u"2"_s, {u"B"_s});
    load(u"GARAE.RVN"_s, customer(u"0001"_s, u"A"_s, 5000));
    const QString today = std::exchange(day_, QDate::currentDate().addDays(-40).toString(Qt::ISODate));
    collect(mine, u"5001"_s, u"0001"_s, 100);
    synced(mine);
    // The old days have been looked at today.
    on(mine, u"DELETE FROM MTMOK"_s);
    noteDeletion(mine, u"입금표"_s, u"5001"_s, u"0001"_s);
    day_ = today;
    collect(colleagues, u"5001"_s, u"0001"_s, 7000, 0, u"B"_s);
    synced(colleagues);
    synced(mine);
    EXPECT_EQ(waiting(mine), customer(u"0001"_s, u"A"_s, 12000));
}

TEST_F(FetchTest, AnOrderComesOnce) {
    TestDevice& terminal = enrol(u"1"_s);
    const auto order = [&](const QString& number, const QString& user) {
        return u"%1|매출|0001|상회|%2|미처리|1001|맥주|01|1|0|10|1|0|0|%3|\r\n"_s.arg(day_, number, user);
    };
    sell(terminal, u"5003"_s, u"0001"_s, 1);
    noteDeletion(terminal, u"거래명세서"_s, u"5002"_s, u"0001"_s);
    load(u"MTM.RVN"_s, order(u"5001"_s, u"A"_s) + order(u"5002"_s, u"A"_s) + order(u"5003"_s, u"A"_s) +
                           order(u"5001"_s, u"B"_s));
    const OfficeEnded first = sync(terminal);
    EXPECT_NE(first.out.find("fetched MTM.RVN"), std::string::npos) << first.err;
    EXPECT_EQ(waiting(terminal, u"MTM.RVN"_s), order(u"5001"_s, u"A"_s));
    load(u"MTM.RVN"_s, order(u"5004"_s, u"A"_s));
    // One that waits is left alone, whether it is loaded before the next sync or not.
    EXPECT_EQ(synced(terminal).find("fetched"), std::string::npos);
    logIn(terminal);
    synced(terminal);
    EXPECT_EQ(waiting(terminal, u"MTM.RVN"_s), order(u"5004"_s, u"A"_s));
    logIn(terminal);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(synced(terminal).find("fetched"), std::string::npos);
    EXPECT_EQ(on(terminal, u"SELECT JunNo, COUNT(*) FROM MTM GROUP BY 1 ORDER BY 1"_s),
              QList<QStringList>({{u"5001"_s, u"1"_s}, {u"5003"_s, u"1"_s}, {u"5004"_s, u"1"_s}}));
}

}  // namespace
}  // namespace test
