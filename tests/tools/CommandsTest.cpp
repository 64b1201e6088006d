#include "AdminTest.h"
#include "support/Pump.h"

namespace test {
namespace {

using CommandsTest = AdminTest;

TEST_F(CommandsTest, JournalListsPaymentsAndSettlesOpenOnes) {
    makeDevice();
    execute(
        u"INSERT INTO PAYJOURNAL (Number, State, JunNo, BANKTRANNO, DDate, Charged, GCode) VALUES "
        "('%1', 'approved', '5001', '000000000001', '2024-03-29', '1000', '1'), "
        "('%2', 'unknown', '5002', '', '2024-03-29', '1000', '1'), "
        "('%3', 'sent', '7001', '', '2024-03-29', '1000', '1')"_s.arg(QString(32, u'a'), QString(32, u'b'),
                                                                      QString(32, u'c')));
    const struct {
        const char* options;  ///< "B" is the second payment's number and so on.
        int exitCode;
        const char* said;
    } cases[] = {
        {"--open", admin::kSuccess, "5002"},
        {"--settle bb released", admin::kUsageError, "message number"},
        {"--settle B approved", admin::kUsageError, "twelve"},
        {"--settle B released 000000000002", admin::kUsageError, "released"},
        {"--settle D released", admin::kFailure, "no payment"},
        {"--settle A released", admin::kFailure, "approved already"},
        {"--settle B approved 000000000001", admin::kFailure, "another payment"},
        {"--settle B approved 000000000002", admin::kSuccess, "slip 5002"},
        {"--settle C approved 000000000002", admin::kFailure, "on slip 5002"},
        {"--settle C released", admin::kSuccess, "paid again"},
        {"--settle C released", admin::kFailure, "released already"},
        {"--reopen C", admin::kSuccess, "is open"},
        {"--reopen C", admin::kFailure, "open already"},
        {"--settle C approved 000000000003", admin::kSuccess, "slip 7001"},
        {"--reopen C", admin::kSuccess, "is open"},
        {"--settle C released", admin::kSuccess, "paid again"},
    };
    for (const auto& [options, exitCode, said] : cases) {
        QStringList arguments{u"journal"_s};
        for (const QString& word : QString::fromLatin1(options).split(u' '))
            arguments << (word.size() == 1 ? QString(32, word[0]) : word);
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.exitCode, exitCode) << options;
        EXPECT_THAT(ended.out + ended.err, HasSubstr(said));
        EXPECT_THAT(ended.out, Not(HasSubstr("5001"))) << options;
    }
    EXPECT_EQ(
        rows(u"SELECT State FROM PAYJOURNAL UNION ALL SELECT JunNo || BANKTRANNO FROM MTMOK ORDER BY 1"_s)
            .join(u' '),
        u"5002000000000002 7001 approved approved released"_s);
    const auto terminal = openTerminal();
    EXPECT_THAT(run({u"journal"_s, u"--settle"_s, QString(32, u'c'), u"released"_s}).err,
                HasSubstr("close the"));
}

TEST_F(CommandsTest, AnInstallationWithoutItsModuleSaysSoWhenALineIsNeeded) {
    makeDevice();
    const QTemporaryDir elsewhere;
    const QString alone = elsewhere.filePath(u"rovanactl"_s);
    ASSERT_TRUE(QFile::copy(QStringLiteral(ROVANACTL), alone));
    platform::writeWholeFile(path(u"rovana.conf"_s), "[reader]\ntype = serial\ndevice = /dev/null\n");
    for (const auto& [program, said] : {std::pair{alone, "lines.so"}, {QStringLiteral(ROVANACTL), "ioctl"}}) {
        QProcess process;
        process.start(program, {u"swipe-test"_s, u"--device"_s, folder()});
        ASSERT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitCode(), admin::kFailure);
        EXPECT_THAT(process.readAllStandardError().toStdString(), HasSubstr(said));
    }
}

TEST_F(CommandsTest, LoadTakesTheWholeFileOrNothing) {
    makeDevice();
    const QByteArray user =
        "userID,userPASS,userNAME,vatMode,followOn,containerWork,searchSetting,userTEL,reserve1,reserve2\n";
    const QByteArray config = "sangho,sno,name,tel,fax,juso,calltel,cardid,cardpass,cardno\n";
    const struct {
        QString table;
        QByteArray content;
        const char* said;
    } cases[] = {
        {u"JGUBUN"_s, "CODE,NAME\n01,소주\n02\n", "line 3"},
        {u"JGUBUN"_s, "CODE,NAME\n01,\xBC\xD2\n02,\xFF\n", "line 3: the text is neither"},
        {u"JGUBUN"_s,
         "\xEF\xBB\xBF"
         "CODE,NAME\n01,\xBC\xD2\n",
         "line 2: the text is not UTF-8"},
        {u"JGUBUN"_s, "CODE,NAME,code\n01,소주,02\n", "CODE twice"},
        {u"PDAUSER"_s, user + "A,1,,,,,,,,\nA,2,,,,,,,,\n", "line 3"},
        {u"config"_s, config + "a,,,,,,,,,\nb,,,,,,,,,\n", "exactly one row"},
    };
    const auto contents = [this] {
        return rows(u"SELECT CODE, NAME FROM JGUBUN ORDER BY CODE"_s) + rows(u"SELECT * FROM PDAUSER"_s) +
               rows(u"SELECT * FROM config"_s);
    };
    const QStringList before = contents();
    for (const auto& [table, content, said] : cases) {
        const Ended ended = run({u"load"_s, table, writeFile(u"faulty.csv"_s, content)});
        EXPECT_EQ(ended.exitCode, admin::kFailure) << said;
        EXPECT_THAT(ended.err, HasSubstr(said));
        EXPECT_EQ(contents(), before) << said;
    }
    // In UTF-8, and in code page 949, as a Korean spreadsheet writes it.
    for (const char* good : {"\xEF\xBB\xBFname, CODE\r\n\"소, 주\",01\r\n맥주,02\r\n",
                             "name, CODE\r\n\"\xBC\xD2, \xC1\xD6\",01\r\n\xB8\xC6\xC1\xD6,02\r\n"}) {
        execute(u"DELETE FROM JGUBUN"_s);
        ran({u"load"_s, u"jgubun"_s, writeFile(u"classes.csv"_s, good)});
        EXPECT_EQ(contents().first(2), QStringList({u"01|소, 주"_s, u"02|맥주"_s}));
    }
}

TEST_F(CommandsTest, UserIsAddedAndChanged) {
    makeDevice();
    const auto user = [this] { return rows(u"SELECT * FROM PDAUSER WHERE userID = 'E'"_s).join(u' '); };
    EXPECT_EQ(run({u"user"_s, u"E"_s, u"--name"_s, u"홍길동"_s}).exitCode, admin::kUsageError);
    const Ended added =
        run({u"user"_s, u"E"_s, u"--password"_s, u"-"_s, u"--name"_s, u"홍길동"_s}, u"8642\n"_s);
    EXPECT_THAT(added.out + added.err, Not(HasSubstr("8642")));
    EXPECT_EQ(user(), u"E|8642|홍길동|1|||N|||"_s);
    ran({u"user"_s, u"E"_s, u"--vat-mode"_s, u"3"_s, u"--follow-on"_s, u"Z"_s, u"--container"_s, u"X"_s,
         u"--search"_s, u"Y"_s});
    ran({u"user"_s, u"E"_s, u"--container"_s, u""_s, u"--password"_s, u"97"_s});
    EXPECT_EQ(user(), u"E|97|홍길동|3|Z||Y|||"_s);
}

TEST_F(CommandsTest, TheProgramWorksInAPlainEnvironment) {
    needApplication();
    const QString device = path(u"장치"_s);
    const auto runPlain = [](const QStringList& arguments) {
        return runProgram(u"/usr/bin/env"_s, QStringList{u"-u"_s, u"LC_ALL"_s, u"-u"_s, u"LC_CTYPE"_s,
                                                         u"-u"_s, u"LANG"_s, QStringLiteral(ROVANACTL)} +
                                                 arguments);
    };
    EXPECT_EQ(runPlain({u"init"_s, device, u"--demo"_s, u"--date"_s, kDay}).err, "");
    for (const QString& file : {u""_s, u"/My Documents/rvnclient.cdb"_s, u"/My Documents/GARAE.RVN"_s,
                                u"/Flash Disk/SALE.ini"_s, u"/저장소카드"_s})
        expectForNobodyElse(device + file);
    EXPECT_EQ(runPlain({u"--device"_s, device, u"import"_s}).exitCode, 0);
    const std::string slips = runPlain({u"slips"_s, u"--device"_s, device, u"--date"_s, kDay}).out;
    EXPECT_EQ(std::ranges::count(slips, '\n'), 7);
    const std::string price =
        runPlain({u"price"_s, u"0001"_s, u"1027"_s, u"1"_s, u"0"_s, u"--device"_s, device}).out;
    EXPECT_EQ(std::ranges::count(price, '\t'), 4);
}

TEST_F(CommandsTest, InitReplacesNeitherADatabaseNorWaitingOrders) {
    const QString orders = u"My Documents/MTM.RVN"_s;
    ASSERT_TRUE(QDir(folder()).mkpath(u"My Documents"_s));
    writeFile(orders, "somebody's");
    EXPECT_THAT(run({u"init"_s, u"--demo"_s}).err, HasSubstr("MTM.RVN"));
    EXPECT_EQ(readFile(path(orders)), "somebody's");
    EXPECT_FALSE(QFile::exists(database()));
    QFile::remove(path(orders));
    makeDevice();
    execute(u"UPDATE PDAUSER SET userNAME = '원래'"_s);
    const QByteArray before = readFile(database());
    for (const QStringList& arguments : {QStringList{u"init"_s}, QStringList{u"init"_s, u"--demo"_s}}) {
        EXPECT_EQ(run(arguments).exitCode, admin::kFailure);
        EXPECT_EQ(readFile(database()), before);
        EXPECT_FALSE(QFile::exists(path(orders)));
    }
}

TEST_F(CommandsTest, CheckNamesEachDepartureFromTheTables) {
    const struct {
        QString statement;  ///< Empty for pages of rubbish.
        const char* wrong;
        bool isMended = false;
    } cases[] = {
        {QString(), "damaged"},
        {u"DROP TABLE YTEMP"_s, "table YTEMP", true},
        // An index that knows only some of the rows.
        {uR"(INSERT INTO GARAE (GCODE) VALUES ('0001'), ('0002'); DROP INDEX GARAE_GCODE;
             CREATE INDEX GARAE_GCODE ON GARAE (GCODE) WHERE GCODE > '0001'; PRAGMA writable_schema = ON;
             UPDATE sqlite_schema SET sql = 'CREATE INDEX GARAE_GCODE ON GARAE (GCODE)'
                 WHERE name = 'GARAE_GCODE')"_s,
         "damaged", true},
        {u"DROP TABLE TEMP; CREATE TABLE TEMP AS SELECT * FROM YTEMP"_s, "columns of TEMP"},
    };
    for (const auto& [statement, wrong, isMended] : cases) {
        QFile::remove(database());
        makeDevice();
        ran({u"check"_s});
        if (statement.isEmpty()) {
            QByteArray content = readFile(database());
            // Past the first page, so that the file still opens.
            for (qsizetype i = 4096; i < content.size(); i += 64) content[i] = char(0xA5);
            writeFile(u"My Documents/rvnclient.cdb"_s, content);
        } else {
            execute(statement);
        }
        const Ended ended = run({u"check"_s});
        EXPECT_EQ(ended.exitCode, admin::kFailure);
        EXPECT_EQ(QString::fromStdString(ended.out).count(u"wrong: "), 1) << ended.out;
        EXPECT_THAT(ended.out, HasSubstr(wrong));
        const Ended repaired = run({u"check"_s, u"--repair"_s});
        EXPECT_EQ(repaired.exitCode, isMended ? admin::kSuccess : admin::kFailure) << repaired.out;
        EXPECT_EQ(run({u"check"_s}).exitCode, repaired.exitCode) << wrong;
    }
}

TEST_F(CommandsTest, CheckLeavesASlipThatALoginOffers) {
    makeDevice();
    execute(u"INSERT INTO YTEMP DEFAULT VALUES; INSERT INTO UNSAVED VALUES ('YTEMP', 'A', '1')"_s);
    EXPECT_THAT(ran({u"check"_s, u"--repair"_s}), HasSubstr("to user A at login"));
    execute(u"UPDATE UNSAVED SET Changed = ''"_s);
    EXPECT_THAT(ran({u"check"_s, u"--repair"_s}), HasSubstr("mended: YTEMP holds 1 rows"));
    EXPECT_EQ(rows(u"SELECT count(*) FROM YTEMP"_s), QStringList{u"0"_s});
}

}  // namespace
}  // namespace test
