#include <QFileInfo>

#include "AdminTest.h"
#include "books/ContainerBalance.h"
#include "platform/Clock.h"
#include "support/FullDisk.h"

namespace test {
namespace {

const QString kFirstDay = u"2024-03-27"_s;
const QString kSecondDay = u"2024-03-28"_s;

/// Two old days that are closed, one that is not, and today; visits of two customers on each.
class ArchiveTest : public AdminTest {
  protected:
    void SetUp() override {
        platform::clock::set(QDateTime(QDate::fromString(kDay, Qt::ISODate), {9, 5}));
        makeDemo();
        ASSERT_EQ(run({u"import"_s}).exitCode, admin::kSuccess);
        platform::adoce::DatabaseFile::forgetAll();
        execute(u"DELETE FROM MTM"_s);
        execute(u"UPDATE PUMMOK SET TTT = 'Z', BoxBonEa = '20' WHERE rowid <= 3"_s);
        for (const QString& day : {u"2024-03-26"_s, kFirstDay, kSecondDay, kDay}) {
            for (const QString& number : {u"5001"_s, u"5002"_s}) addVisit(day, number);
        }
        execute(
            u"INSERT INTO DAYCLOSE (DDate, UserID) VALUES ('2024-03-27', 'A'), ('2024-03-28', 'A'), "
            "('2024-03-26', 'B')"_s);
    }

    void addVisit(const QString& day, const QString& number) {
        const QString customer = u"(SELECT GCODE FROM GARAE LIMIT 1 OFFSET %1)"_s.arg(number.last(1));
        execute(
            u"INSERT INTO MTM (DDate, GCode, JunNo, UserID, PCode, PName, Box, Bon, MMoney, DTime) "
            "SELECT '%1', %2, '%3', 'A', Pcode, Pname, '2', '5', '10000', '10:00' FROM PUMMOK WHERE rowid <= "
            "4;"
            "INSERT INTO YTM (DDate, GCode, JunNo, UserID, PCode, PName, FBox, NBox, Bon) "
            "SELECT '%1', %2, '%3', 'A', Pcode, Pname, '1', '1', '3' FROM PUMMOK WHERE rowid = 2;"
            "INSERT INTO MTMOK (DDate, Gubun, GCode, JunNo, UserID, CardMoney, MSGSENDTIME) "
            "VALUES ('%1', '매출', %2, '%3', 'A', '10000', '');"
            "INSERT INTO PAYJOURNAL (Number, State, DDate, GCode, JunNo, UserID, MSGSENDTIME) "
            "VALUES ('%1-%3', 'approved', '%1', %2, '%3', 'A', '');"
            "INSERT INTO PRINTLOG (DDate, JunNo, UserID, Document, Copy) "
            "VALUES ('%1', '%3', 'A', '거래명세서', '공급자용')"_s.arg(day, customer, number));
    }

    QString file() const { return folder() + u"/old.cdb"_s; }
    Ended archive(const QStringList& more = {}, const QString& before = kDay) {
        return run(QStringList{u"archive"_s, file(), u"--before"_s, before} + more);
    }

    /// The visits that a table holds.
    QString visits(const QString& table) {
        return rows(u"SELECT DISTINCT substr(DDate, 9), JunNo FROM %1 ORDER BY 1, 2"_s.arg(table)).join(u' ');
    }
    /// What all customers hold today, without a slip at hand.
    QString balances() {
        QString all;
        for (const QString& gCode : rows(u"SELECT GCODE FROM GARAE ORDER BY GCODE LIMIT 5"_s)) {
            for (const books::ContainerBalance& each :
                 books::containerBalances(gCode, kDay, u"5001", u"A", {})) {
                all += u"%1 %2 %3 %4/%5 %6/%7\n"_s.arg(gCode, each.PCode, each.PName)
                           .arg(each.before.crates)
                           .arg(each.before.bottles)
                           .arg(each.delivered.crates)
                           .arg(each.delivered.bottles);
            }
        }
        platform::adoce::DatabaseFile::forgetAll();
        return all;
    }
    /// All that can be read of an old day.
    QString readings(const QStringList& more = {}) {
        QString all;
        for (const QString& day : {kFirstDay, kSecondDay}) {
            for (const QStringList& call :
                 {QStringList{u"totals"_s}, {u"slips"_s}, {u"print"_s, u"sale"_s, u"5001"_s}}) {
                const Ended ended = run(call + QStringList{u"--date"_s, day} + more);
                EXPECT_EQ(ended.exitCode, admin::kSuccess) << narrow(ended.err);
                all += ended.out;
            }
        }
        platform::adoce::DatabaseFile::forgetAll();
        return all;
    }
};

TEST_F(ArchiveTest, MovesClosedDaysAndNothingReadsOtherwiseThanBefore) {
    const QString held = balances();
    const QString read = readings();
    ASSERT_GT(held.count(u'\n'), 3);
    const Ended done = archive();
    ASSERT_EQ(done.exitCode, admin::kSuccess) << narrow(done.err);
    EXPECT_TRUE(done.out.contains(u"2024-03-26 stays: not closed by A"_s)) << narrow(done.out);
    for (const QString& table : {u"MTM"_s, u"MTMOK"_s, u"YTM"_s, u"PRINTLOG"_s})
        EXPECT_EQ(visits(table), u"26|5001 26|5002 29|5001 29|5002"_s) << narrow(table);
    EXPECT_EQ(rows(u"SELECT COUNT(*) FROM DAYCLOSE"_s), QStringList{u"3"_s});
    EXPECT_EQ(narrow(balances()), narrow(held));
    EXPECT_EQ(narrow(readings({u"--database"_s, file()})), narrow(read));
    EXPECT_FALSE(QFileInfo(file()).permissions() & (QFile::ReadGroup | QFile::ReadOther));
    EXPECT_EQ(run({u"check"_s}).exitCode, admin::kSuccess);

    // Another product's crate, and more days: what is carried counts on as the slips did.
    execute(u"UPDATE PUMMOK SET TTT = 'Z', BoxBonEa = '30' WHERE rowid <= 4"_s);
    const QString later = balances();
    EXPECT_NE(later, held);
    ASSERT_TRUE(QFile::rename(file(), folder() + u"/older.cdb"_s));
    EXPECT_EQ(archive({u"--unclosed"_s}).exitCode, admin::kSuccess);
    EXPECT_EQ(visits(u"MTM"_s), u"29|5001 29|5002"_s);
    EXPECT_EQ(narrow(balances()), narrow(later));
    EXPECT_TRUE(archive().out.contains(u"nothing to archive"_s));
}

TEST_F(ArchiveTest, KeepsWhatIsOpenAndWhatTellsAPaymentFromTheNext) {
    execute(
        u"UPDATE PAYJOURNAL SET State = 'unknown' WHERE Number = '2024-03-28-5001';"
        "UPDATE MTMOK SET MSGSENDTIME = '20240329080000' WHERE DDate = '2024-03-27' AND JunNo = '5002';"
        "INSERT INTO MTM (DDate, JunNo, UserID, WorkGubun) VALUES ('2024-03-27', '9001', 'A', '미발행')"_s);
    const QString held = balances();
    const Ended done = archive();
    EXPECT_EQ(done.exitCode, admin::kSuccess) << narrow(done.err);
    EXPECT_TRUE(done.out.contains(u"2024-03-28 5001 stays"_s)) << narrow(done.out);
    EXPECT_EQ(visits(u"MTM"_s), u"26|5001 26|5002 27|5002 27|9001 28|5001 29|5001 29|5002"_s);
    // The approved payment before the open one, and all from there on.
    EXPECT_EQ(visits(u"PAYJOURNAL"_s), u"26|5001 26|5002 27|5002 28|5001 28|5002 29|5001 29|5002"_s);
    EXPECT_EQ(narrow(balances()), narrow(held));
}

TEST_F(ArchiveTest, RefusesAndChangesNothing) {
    const auto expectRefused = [&](const Ended& ended, const QString& reason) {
        EXPECT_NE(ended.exitCode, admin::kSuccess);
        EXPECT_TRUE(ended.err.contains(reason)) << narrow(ended.err);
        EXPECT_EQ(visits(u"MTM"_s).count(u' '), 7);
    };
    expectRefused(run({u"archive"_s, file()}), u"--before"_s);
    expectRefused(archive({}, u"2024-03-30"_s), u"today at the latest"_s);
    expectRefused(run({u"archive"_s, database(), u"--before"_s, kDay}), u"is the database itself"_s);
    {
        QString error;
        const auto terminal = platform::adoce::DatabaseFile::shared(database(), &error);
        expectRefused(archive(), u"close the terminal first"_s);
    }
    platform::adoce::DatabaseFile::forgetAll();
    {
        const FullDisk disk(60000);
        expectRefused(archive(), u"cannot be"_s);
    }
    EXPECT_FALSE(QFile::exists(file()));
    writeFile(u"old.cdb"_s, "something else");
    expectRefused(archive(), u"holds something else"_s);
    expectRefused(run({u"totals"_s, u"--database"_s, file()}), u"no sound database"_s);
    QFile::remove(file());
    execute(u"PRAGMA user_version=1"_s);
    expectRefused(archive(), u"upgrade"_s);
}

}  // namespace
}  // namespace test
