#include "AdminTest.h"
#include "books/ContainerBalance.h"
#include "platform/Clock.h"
#include "support/FullDisk.h"

namespace test {
namespace {

/// Two old days that are closed, one that is not, and today; visits of two customers on each.
class ArchiveTest : public AdminTest {
  protected:
    void SetUp() override {
        platform::clock::set(QDateTime(QDate::fromString(kDay, Qt::ISODate), {9, 5}));
        ran({u"init"_s, u"--demo"_s, u"--date"_s, kDay});
        ran({u"import"_s});
        execute(u"DELETE FROM MTM; UPDATE PUMMOK SET TTT = 'Z', BoxBonEa = '20' WHERE rowid <= 3"_s);
        for (const QString& day : {u"2024-03-26"_s, u"2024-03-27"_s, u"2024-03-28"_s, kDay}) {
            for (const QString& number : {u"5001"_s, u"5002"_s}) addVisit(day, number);
        }
        execute(
            u"INSERT INTO DAYCLOSE (DDate, UserID) VALUES ('2024-03-27', 'A'), ('2024-03-28', 'A'), "
            "('2024-03-26', 'B')"_s);
    }

    void addVisit(const QString& day, const QString& number) {
        const QString customer = u"(SELECT GCODE FROM GARAE LIMIT 1 OFFSET %1)"_s.arg(number.last(1));
        execute(
            uR"(INSERT INTO MTM (DDate, GCode, JunNo, UserID, PCode, PName, Box, Bon, MMoney, DTime)
                SELECT '%1', %2, '%3', 'A', Pcode, Pname, '2', '5', '10000', '10:00' FROM PUMMOK WHERE rowid <= 4;
            INSERT INTO YTM (DDate, GCode, JunNo, UserID, PCode, PName, FBox, NBox, Bon)
                SELECT '%1', %2, '%3', 'A', Pcode, Pname, '1', '1', '3' FROM PUMMOK WHERE rowid = 2;
            INSERT INTO MTMOK (DDate, Gubun, GCode, JunNo, UserID, CardMoney, MSGSENDTIME)
                VALUES ('%1', '매출', %2, '%3', 'A', '10000', '');
            INSERT INTO PAYJOURNAL (Number, State, DDate, GCode, JunNo, UserID, MSGSENDTIME)
                VALUES ('%1-%3', 'approved', '%1', %2, '%3', 'A', '');
            INSERT INTO PRINTLOG (DDate, JunNo, UserID, Document, Copy)
                VALUES ('%1', '%3', 'A', '거래명세서', '공급자용'))"_s.arg(day, customer, number));
    }

    QString file() const { return path(u"old.cdb"_s); }
    Ended archive(const QStringList& more = {}) {
        return run(QStringList{u"archive"_s, file(), u"--before"_s, kDay} + more);
    }

    QString visits(const QString& table) {
        return rows(u"SELECT DISTINCT substr(DDate, 9), JunNo FROM %1 ORDER BY 1, 2"_s.arg(table)).join(u' ');
    }
    /// What all customers hold today, without a slip at hand.
    std::string balances() {
        QString all;
        for (const QString& gCode : rows(u"SELECT GCODE FROM GARAE ORDER BY GCODE LIMIT 5"_s)) {
            for (const books::ContainerBalance& each :
                 books::containerBalances(gCode, kDay, u"5001", u"A", {}))
                all += u"%1 %2 %3 %4/%5 %6/%7\n"_s.arg(gCode, each.PCode, each.PName)
                           .arg(each.before.crates)
                           .arg(each.before.bottles)
                           .arg(each.delivered.crates)
                           .arg(each.delivered.bottles);
        }
        platform::adoce::DatabaseFile::forgetAll();
        return all.toStdString();
    }
    std::string readings(const QStringList& more = {}) {
        std::string all;
        for (const QString& day : {u"2024-03-27"_s, u"2024-03-28"_s}) {
            for (const QStringList& call :
                 {QStringList{u"totals"_s}, {u"slips"_s}, {u"print"_s, u"sale"_s, u"5001"_s}})
                all += ran(call + QStringList{u"--date"_s, day} + more);
        }
        return all;
    }
};

TEST_F(ArchiveTest, MovesClosedDaysAndNothingReadsOtherwiseThanBefore) {
    const std::string held = balances();
    const std::string read = readings();
    ASSERT_GT(held.size(), 60);
    EXPECT_THAT(archive().out, HasSubstr("2024-03-26 stays: not closed by A"));
    for (const QString& table : {u"MTM"_s, u"MTMOK"_s, u"YTM"_s, u"PRINTLOG"_s})
        EXPECT_EQ(visits(table), u"26|5001 26|5002 29|5001 29|5002"_s) << table.toStdString();
    EXPECT_EQ(rows(u"SELECT COUNT(*) FROM DAYCLOSE"_s), QStringList{u"3"_s});
    EXPECT_EQ(balances(), held);
    EXPECT_EQ(readings({u"--database"_s, file()}), read);
    expectForNobodyElse(file());
    ran({u"check"_s});

    // Another product's crate, and more days: what is carried counts on as the slips did.
    execute(u"UPDATE PUMMOK SET TTT = 'Z', BoxBonEa = '30' WHERE rowid <= 4"_s);
    const std::string later = balances();
    EXPECT_NE(later, held);
    ASSERT_TRUE(QFile::rename(file(), path(u"older.cdb"_s)));
    EXPECT_EQ(archive({u"--unclosed"_s}).exitCode, admin::kSuccess);
    EXPECT_EQ(visits(u"MTM"_s), u"29|5001 29|5002"_s);
    EXPECT_EQ(balances(), later);
    EXPECT_THAT(archive().out, HasSubstr("nothing to archive"));
    // As many slips as the file has, but others.
    for (const QString& number : {u"5001"_s, u"5002"_s}) addVisit(u"2024-03-25"_s, number);
    addVisit(kDay, u"5003"_s);
    EXPECT_THAT(archive({u"--unclosed"_s}).err, HasSubstr("holds something else"));
    EXPECT_EQ(visits(u"MTM"_s), u"25|5001 25|5002 29|5001 29|5002 29|5003"_s);
}

TEST_F(ArchiveTest, KeepsWhatIsOpenAndWhatTellsAPaymentFromTheNext) {
    execute(
        uR"(UPDATE PAYJOURNAL SET State = 'unknown' WHERE Number = '2024-03-28-5001';
        UPDATE MTMOK SET MSGSENDTIME = '20240329080000' WHERE DDate = '2024-03-28' AND JunNo = '5002';
        INSERT INTO MTM (DDate, JunNo, UserID, WorkGubun) VALUES ('2024-03-27', '9001', 'A', '미발행'))"_s);
    const std::string held = balances();
    EXPECT_THAT(archive().out, HasSubstr("2024-03-28 5001 stays"));
    EXPECT_EQ(visits(u"MTM"_s), u"26|5001 26|5002 27|9001 28|5001 28|5002 29|5001 29|5002"_s);
    // The approved payment before the open one, and all from there on.
    EXPECT_EQ(visits(u"PAYJOURNAL"_s), u"26|5001 26|5002 27|5002 28|5001 28|5002 29|5001 29|5002"_s);
    EXPECT_EQ(balances(), held);
}

TEST_F(ArchiveTest, RefusesAndChangesNothing) {
    const QStringList archive{u"archive"_s, file(), u"--before"_s, kDay};
    expectRefused({u"archive"_s, file(), u"--before"_s, u"2024-03-30"_s}, "today at the latest");
    expectRefused({u"archive"_s, database(), u"--before"_s, kDay}, "is the database itself");
    {
        const auto terminal = openTerminal();
        expectRefused(archive, "close the terminal first");
    }
    {
        const FullDisk disk(60000);
        expectRefused(archive, "cannot be");
    }
    EXPECT_FALSE(QFile::exists(file()));
    writeFile(u"old.cdb"_s, "something else");
    expectRefused(archive, "holds something else");
    expectRefused({u"totals"_s, u"--database"_s, file()}, "no sound database");
    QFile::remove(file());
    execute(u"PRAGMA user_version=1"_s);
    expectRefused(archive, "upgrade");
}

}  // namespace
}  // namespace test
