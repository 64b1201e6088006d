#include "AdminTest.h"

namespace test {
namespace {

class CheckTest : public AdminTest {
  protected:
    /// The one finding's text; a failure when there is none or another.
    void expectFinding(const QString& wrong) {
        const Ended ended = run({u"check"_s});
        EXPECT_EQ(ended.exitCode, admin::kFailure);
        EXPECT_EQ(ended.out.count(u"wrong: "_s), 1) << narrow(ended.out);
        EXPECT_TRUE(ended.out.contains(wrong)) << narrow(ended.out);
    }
};

TEST_F(CheckTest, NamesDamage) {
    makeDevice();
    QByteArray content = readFile(database());
    // Past the first page, so that the file still opens.
    for (qsizetype i = 4096; i < content.size(); i += 64) content[i] = char(0xA5);
    QFile file(database());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();
    expectFinding(u"damaged"_s);
}

TEST_F(CheckTest, NamesEachDepartureFromTheTables) {
    const struct {
        QString statement;
        QString wrong;
        bool isMended = false;
    } cases[] = {
        {u"DROP TABLE YTEMP"_s, u"table YTEMP"_s, true},
        // An index that knows only some of the rows.
        {u"INSERT INTO GARAE (GCODE) VALUES ('0001'), ('0002'); DROP INDEX GARAE_GCODE; CREATE INDEX "
         "GARAE_GCODE ON GARAE (GCODE) WHERE GCODE > '0001'; PRAGMA writable_schema = ON; UPDATE "
         "sqlite_schema "
         "SET sql = 'CREATE INDEX GARAE_GCODE ON GARAE (GCODE)' WHERE name = 'GARAE_GCODE'"_s,
         u"damaged"_s, true},
        {u"DROP TABLE TEMP; CREATE TABLE TEMP AS SELECT * FROM YTEMP"_s, u"columns of TEMP"_s},
    };
    for (const auto& [statement, wrong, isMended] : cases) {
        QFile::remove(database());
        makeDevice();
        ASSERT_EQ(run({u"check"_s}).exitCode, admin::kSuccess);
        execute(statement);
        expectFinding(wrong);
        const Ended repaired = run({u"check"_s, u"--repair"_s});
        EXPECT_EQ(repaired.exitCode, isMended ? admin::kSuccess : admin::kFailure) << narrow(repaired.out);
        EXPECT_EQ(repaired.out.contains(u"mended: "_s), isMended) << narrow(repaired.out);
        EXPECT_EQ(run({u"check"_s}).exitCode, repaired.exitCode) << narrow(wrong);
    }
}

TEST_F(CheckTest, LeavesASlipThatALoginOffers) {
    makeDevice();
    execute(u"INSERT INTO YTEMP DEFAULT VALUES; INSERT INTO UNSAVED VALUES ('YTEMP', 'A', '1')"_s);
    EXPECT_TRUE(run({u"check"_s, u"--repair"_s}).out.contains(u"to user A at login"_s));
    execute(u"UPDATE UNSAVED SET Changed = ''"_s);
    EXPECT_TRUE(run({u"check"_s, u"--repair"_s}).out.contains(u"mended: YTEMP holds 1 rows"_s));
    EXPECT_EQ(rows(u"SELECT count(*) FROM YTEMP"_s), QStringList{u"0"_s});
}

}  // namespace
}  // namespace test
