#include "AdminTest.h"

namespace test {
namespace {

using CheckTest = AdminTest;

TEST_F(CheckTest, NamesEachDepartureFromTheTables) {
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

TEST_F(CheckTest, LeavesASlipThatALoginOffers) {
    makeDevice();
    execute(u"INSERT INTO YTEMP DEFAULT VALUES; INSERT INTO UNSAVED VALUES ('YTEMP', 'A', '1')"_s);
    EXPECT_THAT(ran({u"check"_s, u"--repair"_s}), HasSubstr("to user A at login"));
    execute(u"UPDATE UNSAVED SET Changed = ''"_s);
    EXPECT_THAT(ran({u"check"_s, u"--repair"_s}), HasSubstr("mended: YTEMP holds 1 rows"));
    EXPECT_EQ(rows(u"SELECT count(*) FROM YTEMP"_s), QStringList{u"0"_s});
}

}  // namespace
}  // namespace test
