
#include "books/OfficeState.h"
#include "common/OfficeAccess.h"
#include "db/Schema.h"
#include "tools/office/LineCutter.h"
#include "tools/office/SyncTest.h"

namespace test {
namespace {

class SendTest : public SyncTest {
  protected:
    void expectDocuments(const QStringList& expected) const { EXPECT_EQ(documents(), expected); }
    QStringList history() const {
        return sql(
            u"SELECT kind, number, revision, is_deleted, after_close FROM office.history ORDER BY kind, number, revision"_s);
    }
};

TEST_F(SendTest, ADayIsSentOnceInAllItsKinds) {
    TestDevice& terminal = enrol(u"1"_s, {u"A"_s, u"B"_s});
    on(terminal, u"INSERT INTO PDAUSER VALUES ('A','1111','김','2','','','','','','')"_s);
    sell(terminal, u"5001"_s, u"0001"_s, 11000);
    sell(terminal, u"5001"_s, u"0001"_s, 2200);
    sell(terminal, u"5001"_s, u"0002"_s, 300, u"B"_s);
    collect(terminal, u"5001"_s, u"0001"_s, 13200, 200);
    on(terminal,
       u"INSERT INTO YTM VALUES ('%1','0001','\"이름\\,{}','5001','1001','맥주','1','2','3','0','0','0','500','A')"_s
           .arg(day_));
    on(terminal,
       u"INSERT INTO PAYJOURNAL (Number,State,DDate,JunNo,UserID,GName) VALUES ('ab12','approved','%1','5001','A',char(31)||'x')"_s
           .arg(day_));
    on(terminal, u"INSERT INTO PRINTLOG VALUES ('%1','5001','A','입금표','공급자용','10:05')"_s.arg(day_));
    on(terminal, u"INSERT INTO DAYCLOSE (DDate,UserID,Strip) VALUES ('%1','A','줄1\n줄2')"_s.arg(day_));
    noteDeletion(terminal, u"입금표"_s, u"5003"_s, u"0001"_s);
    EXPECT_EQ(synced(terminal), "sent 8, deleted 0, waiting 0\n");
    // A control character that separates rows or fields is another one at the office.
    on(terminal, u"UPDATE PAYJOURNAL SET GName = char(0xFFFD) || 'x'"_s);
    expectSameRows(terminal, u"1"_s);
    EXPECT_EQ(sql(u"SELECT userid, username, vatmode FROM office.salesman"_s), QStringList(u"A|김|2"_s));

    EXPECT_EQ(synced(terminal), "sent 0, deleted 0, waiting 0\n");
    EXPECT_TRUE(history().isEmpty());
    on(terminal, u"UPDATE MTM SET WorkGubun = '발행' WHERE UserID = 'A'"_s);
    EXPECT_EQ(synced(terminal), "sent 1, deleted 0, waiting 0\n");
    EXPECT_EQ(history(), QStringList(u"sale|5001|1|f|t"_s));
    expectSameRows(terminal, u"1"_s);
}

TEST_F(SendTest, ALargeDayGoesInSeveralParcels) {
    TestDevice& terminal = enrol(u"1"_s);
    QString rows = u"BEGIN;"_s;
    for (int i = 0; i < 2500; ++i) {
        rows +=
            u"INSERT INTO MTM VALUES ('%1','매출','0001','%2','%3','미발행','1001','맥주','01','1','0','10','0','0','0','A','10:00');"_s
                .arg(day_, QString(100, u'가'), QString::number(5001 + i));
    }
    on(terminal, rows + u"COMMIT"_s);
    EXPECT_EQ(synced(terminal), "sent 2500, deleted 0, waiting 0\n");
    EXPECT_EQ(sql(u"SELECT count(*), sum(office.won(mmoney)) FROM office.mtm"_s),
              QStringList(u"2500|25000"_s));
}

TEST_F(SendTest, WhatGoesWithATraceIsDeletedAndWithoutOneKept) {
    TestDevice& terminal = enrol(u"1"_s);
    for (const QString& number : {u"5001"_s, u"5002"_s, u"5003"_s}) {
        sell(terminal, number, u"0001"_s, 1000);
        collect(terminal, number, u"0001"_s, 1000);
    }
    on(terminal, u"INSERT INTO PRINTLOG VALUES ('%1','5003','A','입금표','공급자용','10:05')"_s.arg(day_));
    synced(terminal);
    // The collection of which nothing is left goes with its sale's trace.
    on(terminal,
       u"DELETE FROM MTM WHERE JunNo <> '5003'; DELETE FROM MTMOK WHERE JunNo <> '5003'; DELETE FROM PRINTLOG"_s);
    noteDeletion(terminal, u"거래명세서"_s, u"5001"_s, u"0001"_s);
    const OfficeEnded ended = sync(terminal);
    EXPECT_EQ(ended.out, "sent 1, deleted 3, waiting 0\n") << ended.err;
    EXPECT_NE(ended.err.find("keeps 2 documents"), std::string::npos) << ended.err;
    expectDocuments({u"collection 5001 A deleted 1"_s, u"collection 5002 A missing 1"_s,
                     u"collection 5003 A present 1"_s, u"deletion 5001 A present 1"_s,
                     u"prints 5003 A deleted 1"_s, u"sale 5001 A deleted 1"_s, u"sale 5002 A missing 1"_s,
                     u"sale 5003 A present 1"_s});
    EXPECT_EQ(sql(u"SELECT sum(office.won(mmoney)) FROM office.mtm"_s), QStringList(u"2000"_s));
    EXPECT_EQ(sql(u"SELECT sum(amount) FROM office.movement"_s), QStringList(u"2000"_s));
    EXPECT_EQ(synced(terminal), "sent 0, deleted 0, waiting 0\n");
    // The same slip once more is another revision of it.
    sell(terminal, u"5001"_s, u"0001"_s, 1000);
    synced(terminal);
    EXPECT_TRUE(documents().contains(u"sale 5001 A present 2"_s));
    EXPECT_EQ(sql(u"SELECT count(*) FROM office.mtm WHERE junno = '5001'"_s), QStringList(u"1"_s));
}

TEST_F(SendTest, AnOldDayLosesWhatWasDeletedOnly) {
    TestDevice& terminal = enrol(u"1"_s);
    day_ = QDate::currentDate().addDays(-70).toString(Qt::ISODate);
    for (const QString& number : {u"5001"_s, u"5002"_s}) sell(terminal, number, u"0001"_s, 1000);
    synced(terminal);
    on(terminal, u"DELETE FROM MTM"_s);
    noteDeletion(terminal, u"거래명세서"_s, u"5001"_s, u"0001"_s);
    // Looked at once a day.
    EXPECT_EQ(synced(terminal), "sent 0, deleted 0, waiting 0\n");
    QFile::remove(terminal.folder() + u"/office/swept"_s);
    EXPECT_EQ(synced(terminal), "sent 1, deleted 1, waiting 0\n");
    expectDocuments({u"deletion 5001 A present 1"_s, u"sale 5001 A deleted 1"_s, u"sale 5002 A present 1"_s});
}

TEST_F(SendTest, ANumberThatIsGivenAgainTakesNothingAway) {
    TestDevice& terminal = enrol(u"1"_s);
    sell(terminal, u"5001"_s, u"0001"_s, 1000);
    collect(terminal, u"5001"_s, u"0001"_s, 1000);
    sell(terminal, u"5002"_s, u"0001"_s, 20);
    synced(terminal);
    // Deleted and given to another customer; the earlier one's collection gets another number.
    on(terminal, u"DELETE FROM MTM WHERE JunNo = '5001'; UPDATE MTMOK SET JunNo = '4001', Gubun = '입금'"_s);
    noteDeletion(terminal, u"거래명세서"_s, u"5001"_s, u"0001"_s);
    sell(terminal, u"5001"_s, u"0002"_s, 300);
    collect(terminal, u"5001"_s, u"0002"_s, 300);
    // An older copy of the database: its next slip has the number of one that was lost.
    on(terminal, u"DELETE FROM MTM WHERE JunNo = '5002'"_s);
    sell(terminal, u"5002"_s, u"0003"_s, 4);
    synced(terminal);
    expectDocuments({u"collection 4001 A present 1"_s, u"collection 5001 A present 2"_s,
                     u"deletion 5001 A present 1"_s, u"sale 5001 A present 2"_s, u"sale 5002 A present 2"_s,
                     u"sale 5002~1 A missing 1"_s});
    EXPECT_EQ(history(), QStringList({u"collection|5001|1|t|f"_s, u"sale|5001|1|t|f"_s}));
    EXPECT_EQ(sql(u"SELECT sum(office.won(mmoney)) FROM office.mtm"_s), QStringList(u"324"_s));
    EXPECT_EQ(
        sql(u"SELECT gcode, sum(amount) FROM office.movement GROUP BY 1 HAVING sum(amount) <> 0 ORDER BY 1"_s),
        QStringList({u"0001|1000"_s, u"0002|300"_s}));
    EXPECT_EQ(synced(terminal), "sent 0, deleted 0, waiting 0\n");
}

TEST_F(SendTest, ASlipOnTheWayToTheCardIsNotSent) {
    TestDevice& terminal = enrol(u"1"_s);
    collect(terminal, u"5001"_s, u"0001"_s, 1000, 400);
    collect(terminal, u"5002"_s, u"0001"_s, 70, 70);
    on(terminal,
       u"INSERT INTO PAYJOURNAL (Number,State,DDate,JunNo,UserID,Gubun) VALUES ('x','prepared','%1','5001','A','')"_s
           .arg(day_));
    on(terminal,
       u"INSERT INTO PAYJOURNAL SELECT 'y','prepared','card','70','',*,'','' FROM MTMOK WHERE JunNo = '5002'"_s);
    on(terminal, u"UPDATE MTMOK SET CardMoney = '70', WonMoney = '0' WHERE JunNo = '5002'"_s);
    synced(terminal);
    expectDocuments({u"collection 5002 A present 1"_s});
    EXPECT_EQ(sql(u"SELECT wonmoney FROM office.mtmok"_s), QStringList(u"70"_s));
    on(terminal, u"DELETE FROM PAYJOURNAL"_s);
    synced(terminal);
    expectDocuments({u"collection 5001 A present 1"_s, u"collection 5002 A present 2"_s});
    expectSameRows(terminal, u"1"_s);
}

TEST_F(SendTest, TwoTerminalsWithOneUserAndNumberAreKeptApart) {
    TestDevice& one = enrol(u"1"_s);
    TestDevice& other = enrol(u"2"_s);
    sell(one, u"5001"_s, u"0001"_s, 1000);
    sell(other, u"5001"_s, u"0002"_s, 1000);
    synced(one);
    synced(other);
    synced(one);
    expectSameRows(one, u"1"_s);
    expectSameRows(other, u"2"_s);
}

TEST_F(SendTest, TheLineIsLostAtAnyByte) {
    LineCutter cutter(cluster().port());
    TestDevice& terminal = enrol(u"1"_s, {u"A"_s}, cutter.port());
    for (int i = 0; i < 40; ++i) {
        const QString number = QString::number(5001 + i);
        sell(terminal, number, u"0001"_s, 1000);
        collect(terminal, number, u"0001"_s, 1000);
        // The answer's end is lost as well as the request's.
        cutter.cutAfter(500 + 230 * i);
        const OfficeEnded ended =
            cutter.run(QStringLiteral(ROVANA_BIN "/rovana-sync"), {u"--device"_s, terminal.folder()});
        EXPECT_NE(ended.exitCode, -1);
    }
    cutter.cutAfter(-1);
    cutter.run(QStringLiteral(ROVANA_BIN "/rovana-sync"), {u"--device"_s, terminal.folder()});
    expectSameRows(terminal, u"1"_s);
    EXPECT_EQ(sql(u"SELECT count(*), max(revision) FROM office.document"_s), QStringList(u"80|1"_s));
    EXPECT_EQ(sql(u"SELECT sum(amount) FROM office.movement"_s), QStringList(u"40000"_s));
}

TEST_F(SendTest, WhoMayNotIsToldAndChangesNothing) {
    TestDevice& terminal = enrol(u"1"_s);
    TestDevice& other = enrol(u"2"_s, {u"B"_s});
    sell(other, u"5001"_s, u"0001"_s, 500, u"B"_s);
    synced(other);
    QFile file(terminal.folder() + u"/office.conf"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QString error;
    const auto access = office::readAccess(file.readAll(), &error);
    const QString password = access->password.view().toString();
    pqxx::connection line(
        u"host=localhost port=%1 dbname=%2 user=terminal_1 password=%3 sslmode=verify-full sslrootcert=%4"_s
            .arg(cluster().port())
            .arg(database(), password, cluster().authority())
            .toStdString());
    const auto refusal = [&](const QString& statement) {
        try {
            pqxx::nontransaction(line).exec(statement.toStdString());
        } catch (const pqxx::sql_error& fault) {
            return std::string(fault.what());
        }
        return std::string();
    };
    for (const char* table : {"document", "mtm", "master_garae", "terminal", "history", "movement", "kind"})
        EXPECT_NE(
            refusal(u"SELECT * FROM office.%1"_s.arg(QLatin1StringView(table))).find("permission denied"),
            std::string::npos)
            << table;
    EXPECT_NE(refusal(u"SELECT office.settle(NULL)"_s).find("permission denied"), std::string::npos);
    EXPECT_NE(refusal(u"SELECT * FROM report.receivables"_s), "");
    const auto send = [&](const QString& day, const QString& user, const QString& fields,
                          const QString& digest) {
        return refusal(
            u"SELECT * FROM terminal.send('%1','{sale}','{5001}','{%2}',ARRAY[array_to_string(ARRAY[%3], E'\\x1f')],ARRAY[%4],'{}','{}','{}',true,false)"_s
                .arg(day, user, fields, digest));
    };
    const QString row = u"'%1','','0001','','5001','','','','','1','0','10','0','0','0','%2',''"_s;
    const QString right =
        u"sha256(convert_to(E'sale\\x1e' || array_to_string(ARRAY[%1], E'\\x1f'), 'UTF8'))"_s;
    const QString own = row.arg(day_, u"A"_s);
    const QString others = row.arg(day_, u"B"_s);
    EXPECT_NE(send(day_, u"A"_s, own, u"'\\x00'::bytea"_s).find("digest"), std::string::npos);
    EXPECT_NE(send(day_, u"B"_s, others, right.arg(others)).find("not enrolled for user B"),
              std::string::npos);
    EXPECT_NE(send(day_, u"A"_s, others, right.arg(others)).find("rows"), std::string::npos);
    EXPECT_NE(send(u"2024-02-31"_s, u"A"_s, own, right.arg(own)), "");
    EXPECT_NE(refusal(u"SELECT terminal.salesmen('{B}','{x}','{1}')"_s).find("not enrolled"),
              std::string::npos);
    EXPECT_NE(refusal(u"SELECT terminal.masters('{PDAUSER}')"_s).find("no master file"), std::string::npos);
    EXPECT_EQ(documents(), QStringList());
    EXPECT_EQ(send(day_, u"A"_s, own, right.arg(own)), "");
    EXPECT_EQ(documents(), QStringList(u"sale 5001 A present 1"_s));

    // A slip of a salesman who is not enrolled stays, and is named; the others' go.
    sell(terminal, u"5002"_s, u"0001"_s, 500, u"B"_s);
    sell(terminal, u"5003"_s, u"0001"_s, 600);
    const OfficeEnded ended = sync(terminal);
    EXPECT_EQ(ended.out, "sent 1, deleted 0, waiting 1\n");
    EXPECT_NE(ended.err.find("not enrolled"), std::string::npos);

    const OfficeEnded skewed = sync(
        terminal, {u"--clock"_s, QDate::currentDate().addMonths(-1).toString(Qt::ISODate) + u" 10:00"_s});
    EXPECT_EQ(skewed.exitCode, 1);
    EXPECT_NE(skewed.err.find("set the clock"), std::string::npos) << skewed.err;
    const auto hello = [&](int schema) {
        pqxx::nontransaction work(line);
        return std::string(work.exec("SELECT what || note FROM terminal.hello(" + std::to_string(schema) +
                                     ",'',now(),'2026-01-01','{}','{}')")[0][0]
                               .c_str());
    };
    EXPECT_NE(hello(db::schema::kVersion + 1).find("upgrade the office"), std::string::npos);
    EXPECT_NE(hello(db::schema::kVersion - 1).find("upgrade the terminal"), std::string::npos);
    EXPECT_EQ(hello(db::schema::kVersion), "office");

    // Another server, or one that says it is another, gets no password.
    changeAccess(terminal.folder(), "host = localhost", "host = 127.0.0.1");
    const OfficeEnded wrong = sync(terminal);
    EXPECT_EQ(wrong.exitCode, 1);
    EXPECT_NE(wrong.err.find("certificate"), std::string::npos) << wrong.err;
    EXPECT_EQ(wrong.err.find(password.toStdString()), std::string::npos);
}

TEST_F(SendTest, GivesWayToTheTerminalAndToAnotherSync) {
    TestDevice& terminal = enrol(u"1"_s);
    sell(terminal, u"5001"_s, u"0001"_s, 500);
    {
        platform::SqliteFile restoring(terminal.folder() + u"/My Documents/rvnclient.cdb"_s,
                                       platform::SqliteFile::Mode::Existing);
        ASSERT_EQ(restoring.lock(), platform::SqliteFile::Lock::Held);
        const OfficeEnded ended = sync(terminal);
        EXPECT_EQ(ended.exitCode, 1);
        EXPECT_NE(ended.err.find("locked"), std::string::npos) << ended.err;
    }
    {
        platform::SqliteFile saving(terminal.folder() + u"/My Documents/rvnclient.cdb"_s,
                                    platform::SqliteFile::Mode::Existing);
        saving.execute(u"PRAGMA journal_mode=WAL"_s);
        ASSERT_TRUE(saving.execute(u"BEGIN IMMEDIATE; UPDATE MTM SET MMoney = '1'"_s));
        EXPECT_EQ(synced(terminal), "sent 1, deleted 0, waiting 0\n");
        EXPECT_EQ(sql(u"SELECT mmoney FROM office.mtm"_s), QStringList(u"500"_s));
    }
    const platform::FolderLock lock(terminal.folder() + u"/office"_s);
    EXPECT_NE(sync(terminal).err.find("another rovana-sync"), std::string::npos);
}

TEST_F(SendTest, TheMenuTellsWhatWaits) {
    TestDevice& terminal = enrol(u"1"_s);
    platform::device::setFolder(terminal.folder());
    EXPECT_EQ(books::officeLine(day_), u"사무실 -"_s);
    sell(terminal, u"5001"_s, u"0001"_s, 500);
    collect(terminal, u"5001"_s, u"0001"_s, 500);
    EXPECT_EQ(books::officeLine(day_), u"사무실 - · 대기 1"_s);
    synced(terminal);
    const QString now = books::readOfficeState().syncedAt.toString(u"HH:mm"_s);
    EXPECT_EQ(books::officeLine(day_), u"사무실 "_s + now);
    sell(terminal, u"5002"_s, u"0001"_s, 500);
    on(terminal, u"UPDATE MTMOK SET InMoney = '1'"_s);
    EXPECT_EQ(books::officeLine(day_), u"사무실 %1 · 대기 2"_s.arg(now));
    // Without the office, what waits of other days is what the last try has counted.
    QFile::remove(terminal.folder() + u"/office.conf"_s);
    EXPECT_EQ(books::officeLine(day_), QString());
}

}  // namespace
}  // namespace test
