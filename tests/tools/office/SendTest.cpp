#include <QFile>

#include "books/OfficeState.h"
#include "tools/office/SyncTest.h"

namespace test {
namespace {

class SendTest : public SyncTest {
  protected:
    const QString kHistory =
        u"SELECT kind, number, revision, is_deleted, after_close FROM office.history ORDER BY 1, 2"_s;
};

TEST_F(SendTest, ADayIsSentOnceInAllItsKinds) {
    const TestDevice& terminal = enrol(u"1"_s, {u"A"_s, u"B"_s});
    sell(terminal, u"5001"_s, u"0001"_s, 11000);
    sell(terminal, u"5001"_s, u"0001"_s, 2200);
    sell(terminal, u"5001"_s, u"0002"_s, 300, u"B"_s);
    collect(terminal, u"5001"_s, u"0001"_s, 13200, 200);
    on(terminal,
       uR"(INSERT INTO PDAUSER VALUES ('A','1111','김','2','','','','','','');
        INSERT INTO YTM VALUES ('%1','0001','"이름\,{}','5001','1001','맥주','1','2','3','0','0','0','500','A');
        INSERT INTO PAYJOURNAL (Number,State,DDate,JunNo,UserID,GName)
            VALUES ('ab12','approved','%1','5001','A',char(31)||'x');
        INSERT INTO PRINTLOG VALUES ('%1','5001','A','입금표','공급자용','10:05');
        INSERT INTO MTM (DDate, JunNo, UserID, PName)
            VALUES ('%1',NULL,'B','1'), ('%1','','B','2'), ('%1',NULL,'B','3');
        INSERT INTO DAYCLOSE (DDate,UserID,Strip) VALUES ('%1','A','줄1
줄2'))"_s.arg(day_));
    noteDeletion(terminal, u"입금표"_s, u"5003"_s);
    // No number at all is an empty one.
    EXPECT_EQ(synced(terminal), "sent 9, deleted 0, waiting 0\n");
    EXPECT_EQ(sql(u"SELECT string_agg(pname, '' ORDER BY row_number) FROM office.mtm WHERE junno = ''"_s),
              QStringList(u"123"_s));
    // A control character that separates rows or fields is another one at the office.
    on(terminal, u"UPDATE PAYJOURNAL SET GName = char(0xFFFD) || 'x'"_s);
    expectSameRows(terminal.folder());
    EXPECT_EQ(sql(u"SELECT userid, username, vatmode FROM office.salesman"_s), QStringList(u"A|김|2"_s));

    EXPECT_EQ(synced(terminal), kNothing);
    on(terminal, u"UPDATE MTM SET WorkGubun = '발행' WHERE UserID = 'A'"_s);
    EXPECT_EQ(synced(terminal), "sent 1, deleted 0, waiting 0\n");
    EXPECT_EQ(sql(kHistory), QStringList(u"sale|5001|1|f|t"_s));
    // One day that does not fit into a call, and three that do, but no two of them together.
    on(terminal,
       uR"(WITH RECURSIVE n (n) AS (SELECT 6001 UNION ALL SELECT n + 1 FROM n WHERE n < 8500)
        INSERT INTO MTM SELECT date('%1', '-' || max(0, (n - 7000) / 500) || ' day'),'매출','0001','%2',n,'미발행',
            '1001','맥주','01','1','0','10','0','0','0','A','10:00' FROM n)"_s.arg(day_,
                                                                                   QString(100, u'가')));
    EXPECT_EQ(synced(terminal), "sent 2500, deleted 0, waiting 0\n");
    expectSameRows(terminal.folder());
}

TEST_F(SendTest, WhatGoesWithATraceIsDeletedAndWithoutOneKept) {
    const TestDevice& terminal = enrol();
    const QString ofOldDay = u" SET DDate = '%1' WHERE JunNo < '5000'"_s.arg(
        QDate::currentDate().addDays(-70).toString(Qt::ISODate));
    for (const QString& number : {u"4001"_s, u"4002"_s}) sell(terminal, number, u"0001"_s, 1000);
    on(terminal, u"INSERT INTO PRINTLOG SELECT DDate,JunNo,'A','거래명세서','공급자용','x' FROM MTM"_s);
    for (const QString& table : {u"MTM"_s, u"PRINTLOG"_s}) on(terminal, u"UPDATE "_s + table + ofOldDay);
    for (const QString& number : {u"5001"_s, u"5002"_s, u"5003"_s}) {
        sell(terminal, number, u"0001"_s, 1000);
        collect(terminal, number, u"0001"_s, 1000);
    }
    for (const QString& number : {u"5004"_s, u"5005"_s}) sell(terminal, number, u"0001"_s, 5);
    on(terminal,
       u"INSERT INTO PRINTLOG SELECT '%1',JunNo,'A','입금표','공급자용','10:05' FROM MTMOK"_s.arg(day_));
    synced(terminal);
    // The collection of which nothing is left goes with its sale's trace.
    on(terminal,
       u"DELETE FROM MTM WHERE JunNo <> '5003'; DELETE FROM MTMOK WHERE JunNo <> '5003'; "
       "DELETE FROM PRINTLOG"_s);
    for (const QString& number : {u"4001"_s, u"5001"_s}) noteDeletion(terminal, u"거래명세서"_s, number);
    on(terminal, u"UPDATE DELETED"_s + ofOldDay);
    // Traces of another paper, and of another customer.
    noteDeletion(terminal, u"용공인수증"_s, u"5004"_s);
    noteDeletion(terminal, u"거래명세서"_s, u"5005"_s, u"0002"_s);
    const Ended ended = sync(terminal);
    EXPECT_EQ(ended.out, "sent 3, deleted 4, waiting 0\n") << ended.err;
    EXPECT_THAT(ended.err, HasSubstr("keeps 5 documents"));
    EXPECT_EQ(
        documents(),
        QStringList({u"collection 5001 A deleted 1"_s, u"collection 5002 A missing 1"_s,
                     u"collection 5003 A present 1"_s, u"deletion 5001 A present 1"_s,
                     u"deletion 5004 A present 1"_s, u"deletion 5005 A present 1"_s,
                     u"prints 4001 A present 1"_s, u"prints 4002 A present 1"_s, u"prints 5001 A deleted 1"_s,
                     u"prints 5002 A missing 1"_s, u"prints 5003 A deleted 1"_s, u"sale 4001 A present 1"_s,
                     u"sale 4002 A present 1"_s, u"sale 5001 A deleted 1"_s, u"sale 5002 A missing 1"_s,
                     u"sale 5003 A present 1"_s, u"sale 5004 A missing 1"_s, u"sale 5005 A missing 1"_s}));
    EXPECT_EQ(
        sql(u"SELECT (SELECT sum(office.won(mmoney)) FROM office.mtm), sum(amount) FROM office.movement"_s),
        QStringList(u"4010|2000"_s));
    EXPECT_EQ(synced(terminal), kNothing);
    // Old days are looked at once a day, and lose what was deleted only.
    QFile::remove(terminal.folder() + u"/office/swept"_s);
    EXPECT_EQ(synced(terminal), "sent 1, deleted 2, waiting 0\n");
    for (const QString& kind : {u"sale"_s, u"prints"_s}) {
        EXPECT_TRUE(documents().contains(kind + u" 4001 A deleted 1"_s)) << kind.toStdString();
        EXPECT_TRUE(documents().contains(kind + u" 4002 A present 1"_s)) << kind.toStdString();
    }
    // The same slip once more is another revision of it.
    sell(terminal, u"5001"_s, u"0001"_s, 1000);
    synced(terminal);
    EXPECT_TRUE(documents().contains(u"sale 5001 A present 2"_s));
    EXPECT_EQ(sql(u"SELECT count(*) FROM office.mtm WHERE junno = '5001'"_s), QStringList(u"1"_s));
    // The trace was of the one before.
    on(terminal, u"DELETE FROM MTM WHERE JunNo = '5001'"_s);
    synced(terminal);
    EXPECT_TRUE(documents().contains(u"sale 5001 A missing 2"_s));
}

TEST_F(SendTest, ANumberThatIsGivenAgainTakesNothingAway) {
    const TestDevice& terminal = enrol();
    sell(terminal, u"5001"_s, u"0001"_s, 1000);
    collect(terminal, u"5001"_s, u"0001"_s, 1000);
    sell(terminal, u"5002"_s, u"0001"_s, 20);
    collect(terminal, u"5003"_s, u"0004"_s, 50);
    noteDeletion(terminal, u"거래명세서"_s, u"5003"_s, u"0004"_s);
    synced(terminal);
    // Deleted and given to another customer; the earlier one's collection gets another number.
    on(terminal,
       u"DELETE FROM MTM WHERE JunNo = '5001'; UPDATE MTMOK SET JunNo = JunNo - 1000, Gubun = '입금'"_s);
    // One is changed under that number before it is sent.
    on(terminal, u"UPDATE MTMOK SET MMoney = '60' WHERE JunNo = '4003'"_s);
    sell(terminal, u"5003"_s, u"0002"_s, 5);
    noteDeletion(terminal, u"거래명세서"_s, u"5001"_s);
    sell(terminal, u"5001"_s, u"0002"_s, 300);
    collect(terminal, u"5001"_s, u"0002"_s, 300);
    // An older copy of the database: its next slip has the number of one that was lost.
    on(terminal, u"DELETE FROM MTM WHERE JunNo = '5002'"_s);
    sell(terminal, u"5002"_s, u"0003"_s, 4);
    synced(terminal);
    EXPECT_EQ(documents(), QStringList({u"collection 4001 A present 1"_s, u"collection 4003 A present 1"_s,
                                        u"collection 5001 A present 2"_s, u"collection 5003 A deleted 1"_s,
                                        u"deletion 5001 A present 1"_s, u"deletion 5003 A present 1"_s,
                                        u"sale 5001 A present 2"_s, u"sale 5002 A present 2"_s,
                                        u"sale 5002~1 A missing 1"_s, u"sale 5003 A present 1"_s}));
    EXPECT_EQ(sql(kHistory),
              QStringList({u"collection|5001|1|t|f"_s, u"collection|5003|1|t|f"_s, u"sale|5001|1|t|f"_s}));
    EXPECT_EQ(sql(u"SELECT sum(office.won(mmoney)) FROM office.mtm"_s), QStringList(u"329"_s));
    EXPECT_EQ(
        sql(u"SELECT gcode, sum(amount) FROM office.movement GROUP BY 1 HAVING sum(amount) <> 0 ORDER BY 1"_s),
        QStringList({u"0001|1000"_s, u"0002|300"_s, u"0004|60"_s}));
    EXPECT_EQ(synced(terminal), kNothing);
}

TEST_F(SendTest, ANumberOfTwoCustomersIsNotKeptTwiceWhenOneLeaves) {
    const TestDevice& terminal = enrol();
    for (const QString& customer : {u"0001"_s, u"0002"_s}) collect(terminal, u"5001"_s, customer, 1000);
    synced(terminal);
    on(terminal, u"UPDATE MTMOK SET JunNo = '4001', Gubun = '입금' WHERE GCode = '0001'"_s);
    synced(terminal);
    EXPECT_EQ(documents(), QStringList({u"collection 4001 A present 1"_s, u"collection 5001 A present 2"_s}));
    EXPECT_EQ(sql(u"SELECT gcode, sum(amount) FROM office.movement GROUP BY 1 ORDER BY 1"_s),
              QStringList({u"0001|1000"_s, u"0002|1000"_s}));
}

TEST_F(SendTest, TheSlipsOfAClockGoneWrongAreSentLikeOthers) {
    const TestDevice& terminal = enrol();
    sell(terminal, u"5001"_s, u"0001"_s, 1000);
    on(terminal,
       u"INSERT INTO MTM SELECT day, Gubun, GCode, GName, JunNo, WorkGubun, PCode, PName, JGubun, Box, Bon, "
       u"MMoney, "
       "BMoney, YMoney, GMoney, UserID, DTime FROM MTM, (SELECT '1970-01-01' AS day UNION SELECT '2100-02-28')"_s);
    EXPECT_EQ(synced(terminal), "sent 3, deleted 0, waiting 0\n");
    expectSameRows(terminal.folder());
    QFile::remove(terminal.folder() + u"/office/swept"_s);
    EXPECT_EQ(synced(terminal), kNothing);
    on(terminal, u"UPDATE MTM SET MMoney = '7'"_s);
    QFile::remove(terminal.folder() + u"/office/swept"_s);
    synced(terminal);
    EXPECT_EQ(sql(u"SELECT ddate, state, revision FROM office.document ORDER BY 1"_s),
              QStringList({u"1970-01-01|present|2"_s, day_ + u"|present|2"_s, u"2100-02-28|present|2"_s}));
}

TEST_F(SendTest, ASlipOnTheWayToTheCardIsNotSent) {
    const TestDevice& terminal = enrol();
    collect(terminal, u"5001"_s, u"0001"_s, 1000, 400);
    collect(terminal, u"5002"_s, u"0001"_s, 70, 70);
    on(terminal,
       uR"(INSERT INTO PAYJOURNAL (Number,State,DDate,JunNo,UserID,Gubun)
            VALUES ('x','prepared','%1','5001','A','');
        INSERT INTO PAYJOURNAL SELECT 'y','prepared','card','70','',*,'','' FROM MTMOK WHERE JunNo = '5002';
        UPDATE MTMOK SET CardMoney = '70', WonMoney = '0' WHERE JunNo = '5002')"_s.arg(day_));
    synced(terminal);
    EXPECT_EQ(documents(), QStringList(u"collection 5002 A present 1"_s));
    EXPECT_EQ(sql(u"SELECT wonmoney FROM office.mtmok"_s), QStringList(u"70"_s));
    on(terminal, u"DELETE FROM PAYJOURNAL"_s);
    synced(terminal);
    EXPECT_EQ(documents(), QStringList({u"collection 5001 A present 1"_s, u"collection 5002 A present 2"_s}));
    expectSameRows(terminal.folder());
}

TEST_F(SendTest, WhatWentBeforeTheCloseIsNoChangeAfterIt) {
    const TestDevice& terminal = enrol();
    for (const QString& number : {u"5001"_s, u"5002"_s, u"5003"_s, u"5004"_s})
        sell(terminal, number, u"0001"_s, 1000);
    synced(terminal);
    const auto deleteSlip = [&](const QString& number) {
        on(terminal, u"DELETE FROM MTM WHERE JunNo = "_s + number);
        noteDeletion(terminal, u"거래명세서"_s, number);
    };
    deleteSlip(u"5001"_s);
    // One that was deleted after it comes together with it.
    deleteSlip(u"5004"_s);
    on(terminal,
       uR"(UPDATE DELETED SET DeletedAt = '%1 12:00:00' WHERE JunNo = '5004';
        UPDATE MTM SET MMoney = '5' WHERE JunNo = '5003';
        INSERT INTO DAYCLOSE (DDate,UserID,ClosedAt) VALUES ('%1','A','%1 11:30:00'))"_s.arg(day_));
    synced(terminal);
    deleteSlip(u"5002"_s);
    synced(terminal);
    EXPECT_EQ(sql(kHistory), QStringList({u"sale|5001|1|t|f"_s, u"sale|5002|1|t|t"_s, u"sale|5003|1|f|f"_s,
                                          u"sale|5004|1|t|t"_s}));
}

TEST_F(SendTest, TheMenuTellsWhatWaitsAndASyncGivesWay) {
    const TestDevice& terminal = enrol();
    sell(terminal, u"5001"_s, u"0001"_s, 500);
    collect(terminal, u"5001"_s, u"0001"_s, 500);
    const QString database = databaseOf(terminal.folder());
    {
        platform::SqliteFile restoring(database, platform::SqliteFile::Mode::Existing);
        ASSERT_EQ(restoring.lock(), platform::SqliteFile::Lock::Held);
        const Ended ended = sync(terminal);
        EXPECT_EQ(ended.exitCode, 1);
        EXPECT_THAT(ended.err, HasSubstr("locked"));
    }
    EXPECT_EQ(books::officeLine(day_), u"사무실 - · 대기 1"_s);
    {
        platform::SqliteFile saving(database, platform::SqliteFile::Mode::Existing);
        saving.execute(u"PRAGMA journal_mode=WAL"_s);
        ASSERT_TRUE(saving.execute(u"BEGIN IMMEDIATE; UPDATE MTM SET MMoney = '1'"_s));
        EXPECT_EQ(synced(terminal), "sent 2, deleted 0, waiting 0\n");
        EXPECT_EQ(sql(u"SELECT mmoney FROM office.mtm"_s), QStringList(u"500"_s));
    }
    const QString line = u"사무실 "_s + books::readOfficeState().syncedAt.toString(u"HH:mm"_s);
    EXPECT_EQ(books::officeLine(day_), line);
    sell(terminal, u"5002"_s, u"0001"_s, 500);
    on(terminal, u"UPDATE MTMOK SET InMoney = '1'"_s);
    EXPECT_EQ(books::officeLine(day_), line + u" · 대기 2"_s);
    const platform::FolderLock lock(terminal.folder() + u"/office"_s);
    EXPECT_THAT(sync(terminal).err, HasSubstr("another rovana-sync"));
    QFile::remove(accessOf(terminal.folder()));
    EXPECT_EQ(books::officeLine(day_), QString());
}

class RecoveryTest : public SyncTest {
  protected:
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
    sql(u"UPDATE office.document SET content = content || 'x' WHERE kind = 'prints' AND number = '5003'"_s);

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
    // A number whose slip was deleted is given again.
    noteDeletion(terminal, u"거래명세서"_s, u"5001"_s);
    synced(terminal);
    // A collection stays when its containers go.
    on(terminal, u"DELETE FROM YTM WHERE JunNo = '5001'"_s);
    noteDeletion(terminal, u"용공인수증"_s, u"5001"_s);
    synced(terminal);
    replaceDatabase(terminal, empty);
    EXPECT_THAT(synced(terminal, {u"--recover"_s}), HasSubstr("gave back"));
    expectSameRows(terminal.folder());
    EXPECT_EQ(on(terminal, u"SELECT COUNT(*) FROM MTM"_s), QStringList(u"6"_s));
    EXPECT_EQ(sql(u"SELECT kind, number, state FROM office.document WHERE state <> 'present'"_s),
              QStringList(u"containers|5001|deleted"_s));
    EXPECT_EQ(synced(terminal), kNothing);
}

TEST_F(RecoveryTest, ASlipThatCameAfterADeletionIsLostWithTheCopyAndNotDeleted) {
    const TestDevice& terminal = enrol();
    const auto deleteSlip = [&](const QString& number) {
        on(terminal, u"DELETE FROM MTM WHERE JunNo = "_s + number);
        noteDeletion(terminal, u"거래명세서"_s, number);
    };
    for (const QString& number : {u"5001"_s, u"5002"_s}) sell(terminal, number, u"0001"_s, 1000);
    deleteSlip(u"5001"_s);
    synced(terminal);
    const QString backup = copyOf(terminal, u"backup"_s);
    sell(terminal, u"5001"_s, u"0001"_s, 2000);
    // The traces under the number become fewer with the backup, and come back with the newer copy.
    noteDeletion(terminal, u"용공인수증"_s, u"5001"_s);
    deleteSlip(u"5002"_s);
    synced(terminal);
    const QString newer = copyOf(terminal, u"newer"_s);
    replaceDatabase(terminal, backup);
    synced(terminal);
    EXPECT_TRUE(documents().contains(u"sale 5001 A missing 1"_s));
    EXPECT_TRUE(documents().contains(u"sale 5002 A present 2"_s));
    replaceDatabase(terminal, newer);
    synced(terminal);
    EXPECT_TRUE(documents().contains(u"sale 5001 A present 1"_s));
    EXPECT_TRUE(documents().contains(u"sale 5002 A deleted 2"_s));
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
