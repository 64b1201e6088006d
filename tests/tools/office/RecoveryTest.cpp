#include <QFile>

#include "tools/office/SyncTest.h"

namespace test {
namespace {

class RecoveryTest : public SyncTest {
  protected:
    /// Puts an earlier copy in the place of the terminal's database.
    static void replaceDatabase(const TestDevice& terminal, const QString& copy) {
        const QString database = databaseOf(terminal.folder());
        for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s}) QFile::remove(database + suffix);
        ASSERT_TRUE(QFile::copy(copy, database));
    }
    QString copyOf(const TestDevice& terminal, const QString& name) {
        on(terminal, u"PRAGMA wal_checkpoint(TRUNCATE)"_s);
        EXPECT_TRUE(QFile::copy(databaseOf(terminal.folder()), path(name)));
        return path(name);
    }
    static QString balance(const TestDevice& terminal) {
        return on(terminal, u"SELECT CJMONEY FROM GARAE WHERE GCODE = '0001'"_s).value(0);
    }

    /// A visit with all that belongs to it, on the books with what it makes of the balance.
    void visit(const TestDevice& terminal, const QString& number, int won) {
        sell(terminal, number, u"0001"_s, won);
        sell(terminal, number, u"0001"_s, 1);
        collect(terminal, number, u"0001"_s, won + 1, 1);
        on(terminal,
           uR"(
            INSERT INTO YTM VALUES ('%1','0001','상회','%2','1001','맥주','1','2','3','0','0','0','500','A');
            INSERT INTO PRINTLOG VALUES ('%1','%2','A','거래명세서','공급자용','x');
            INSERT INTO PAYJOURNAL (Number,State,DDate,JunNo,UserID) VALUES ('m%2','unknown','%1','%2','A');
            INSERT INTO DAYCLOSE (DDate,UserID,ClosedAt) VALUES ('%1','A','%2');
            UPDATE GARAE SET CJMONEY = CJMONEY + %3)"_s.arg(day_, number)
               .arg(won));
    }
};

TEST_F(RecoveryTest, ARestoredBackupGetsItsDaysBackAndKeepsWhatIsNewer) {
    const TestDevice& terminal = enrol();
    on(terminal, u"INSERT INTO GARAE (GCODE, CJMONEY) VALUES ('0001', '100000')"_s);
    visit(terminal, u"5001"_s, 1000);
    const QString backup = copyOf(terminal, u"backup"_s);
    visit(terminal, u"5002"_s, 2000);
    visit(terminal, u"5003"_s, 4000);
    on(terminal, u"DELETE FROM MTM WHERE JunNo = '5003'"_s);
    noteDeletion(terminal, u"거래명세서"_s, u"5003"_s);
    synced(terminal);
    sql(u"UPDATE office.printlog SET copy = 'x' WHERE junno = '5003'"_s);

    replaceDatabase(terminal, backup);
    // What is written after it, under one of the lost numbers.
    sell(terminal, u"5002"_s, u"0009"_s, 77);
    on(terminal, u"UPDATE MTM SET MMoney = '1500' WHERE JunNo = '5001' AND MMoney = '1000'"_s);
    {
        const platform::FolderLock running(terminal.folder());
        EXPECT_THAT(sync(terminal, {u"--recover"_s}).err, HasSubstr("close the terminal"));
    }
    const Ended ended = sync(terminal, {u"--recover"_s});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(ended.err, HasSubstr("sale 5002~1 of user A: its number was given"));
    EXPECT_THAT(ended.err, HasSubstr("prints 5003 of user A: the office's copy is damaged"));
    EXPECT_EQ(balance(terminal), u"107000"_s);
    EXPECT_EQ(on(terminal, u"SELECT JunNo, MMoney FROM MTM ORDER BY JunNo, rowid"_s),
              QStringList({u"5001|1500"_s, u"5001|1"_s, u"5002|77"_s}));
    EXPECT_EQ(on(terminal,
                 u"SELECT (SELECT COUNT(*) FROM MTMOK), (SELECT COUNT(*) FROM PAYJOURNAL), "
                 "(SELECT COUNT(*) FROM DELETED), (SELECT COUNT(*) FROM PRINTLOG)"_s),
              QStringList(u"3|3|1|1"_s));
    EXPECT_EQ(sql(u"SELECT count(*) FROM office.document WHERE state = 'missing'"_s), QStringList(u"1"_s));

    EXPECT_THAT(synced(terminal, {u"--recover"_s}), HasSubstr("gave back 0 documents"));
    EXPECT_EQ(balance(terminal), u"107000"_s);
}

TEST_F(RecoveryTest, ANewDiskGetsEverythingButWhatWasDeleted) {
    const TestDevice& terminal = enrol();
    const QString empty = copyOf(terminal, u"empty"_s);
    visit(terminal, u"5001"_s, 1000);
    visit(terminal, u"5002"_s, 2000);
    // A day from before those that each sync compares.
    on(terminal,
       uR"(INSERT INTO MTM SELECT * FROM MTM WHERE JunNo = '5001';
        UPDATE MTM SET DDate = '%1' WHERE rowid > (SELECT MAX(rowid) - 2 FROM MTM);
        DELETE FROM MTMOK WHERE JunNo = '5002')"_s.arg(
           QDate::currentDate().addDays(-70).toString(Qt::ISODate)));
    noteDeletion(terminal, u"입금표"_s, u"5002"_s);
    synced(terminal);
    synced(terminal);
    replaceDatabase(terminal, empty);
    EXPECT_THAT(synced(terminal, {u"--recover"_s}), HasSubstr("gave back"));
    expectSameRows(terminal.folder());
    EXPECT_EQ(on(terminal, u"SELECT COUNT(*) FROM MTM"_s), QStringList(u"6"_s));
    EXPECT_EQ(sql(u"SELECT kind, ddate, number FROM office.document WHERE state <> 'present'"_s),
              QStringList());
    EXPECT_EQ(synced(terminal), kNothing);
}

TEST_F(RecoveryTest, WhatGoesBackIsNamedAndAnArchiveIsNotGivenBack) {
    const TestDevice& terminal = enrol();
    sell(terminal, u"5001"_s, u"0001"_s, 1000);
    sell(terminal, u"5002"_s, u"0001"_s, 1000);
    synced(terminal);
    const QString backup = copyOf(terminal, u"backup"_s);
    on(terminal, u"UPDATE MTM SET MMoney = '2000' WHERE JunNo = '5001'"_s);
    synced(terminal);
    EXPECT_EQ(sql(u"SELECT * FROM report.went_back"_s), QStringList());
    replaceDatabase(terminal, backup);
    synced(terminal);
    EXPECT_EQ(sql(u"SELECT terminal, day, kind, number, userid, revision, earlier FROM report.went_back"_s),
              QStringList(u"1|%1|sale|5001|A|3|1"_s.arg(day_)));
    EXPECT_THAT(run({u"status"_s}).out, HasSubstr("sale  5001"));
    // What has left for an archive stays there.
    on(terminal,
       u"DELETE FROM MTM; INSERT INTO CONTAINERCARRY "
       "VALUES ('0001','1001','맥주','1','0','0','0','0','%1')"_s.arg(
           QDate::currentDate().addDays(1).toString(Qt::ISODate)));
    synced(terminal, {u"--recover"_s});
    EXPECT_EQ(documents(), QStringList({u"sale 5001 A present 3"_s, u"sale 5002 A present 1"_s}));
    EXPECT_EQ(on(terminal, u"SELECT COUNT(*) FROM MTM"_s), QStringList(u"0"_s));
}

}  // namespace
}  // namespace test
