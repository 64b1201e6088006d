#include <QDir>
#include <functional>

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

TEST_F(CheckTest, NamesAMissingDatabase) {
    makeDevice();
    QFile::remove(database());
    expectFinding(u"is missing"_s);
}

TEST_F(CheckTest, NamesDamage) {
    makeDevice();
    QByteArray content = readFile(database());
    // Past the first page, so that the file still opens.
    for (qsizetype i = 4096; i < content.size(); i += 64) content[i] = char(0xA5);
    QFile file(database());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();
    expectFinding(u"damaged"_s);

    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QByteArray(5000, 'x'));
    file.close();
    expectFinding(u"damaged"_s);
}

TEST_F(CheckTest, NamesEachDepartureFromTheTables) {
    const struct {
        QString statement;
        QString wrong;
    } cases[] = {
        {u"DROP TABLE YTEMP"_s, u"table YTEMP"_s},
        {u"DROP INDEX GARAE_SEEK"_s, u"index GARAE_SEEK"_s},
        {u"DROP INDEX GARAEDANGA_KEY; CREATE INDEX GARAEDANGA_KEY ON GARAEDANGA (pcode, gcode)"_s,
         u"index GARAEDANGA_KEY"_s},
        {u"DROP TABLE TEMP; CREATE TABLE TEMP AS SELECT * FROM YTEMP"_s, u"columns of TEMP"_s},
        {u"ALTER TABLE JGUBUN ADD COLUMN more TEXT"_s, u"columns of JGUBUN"_s},
        {u"DELETE FROM config"_s, u"config has 0 rows"_s},
        {u"UPDATE PDAUSER SET userID = 'Q'"_s, u"who is not in PDAUSER"_s},
    };
    for (const auto& [statement, wrong] : cases) {
        QFile::remove(database());
        makeDevice();
        ASSERT_EQ(run({u"check"_s}).exitCode, admin::kSuccess);
        execute(statement);
        expectFinding(wrong);
    }
}

TEST_F(CheckTest, NamesFaultsOfTheFolder) {
    const QString documents = folder() + u"/My Documents/"_s;
    const struct {
        std::function<void()> spoil;
        QString wrong;
    } cases[] = {
        {[&] { QDir(folder() + u"/저장소카드"_s).removeRecursively(); }, u"저장소카드"_s},
        {[&] { QFile::setPermissions(database(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther); },
         u"others may read"_s},
        {[&] { writeFile(u"My Documents/GARAE.RVN.rejected"_s, "1\n"); }, u"GARAE.RVN.rejected"_s},
        {[&] { writeFile(u"My Documents/rvnclient.cdb.new"_s, "x"); }, u"an init that was stopped"_s},
    };
    for (const auto& [spoil, wrong] : cases) {
        QDir(documents).removeRecursively();
        makeDevice();
        ASSERT_EQ(run({u"check"_s}).exitCode, admin::kSuccess);
        spoil();
        expectFinding(wrong);
    }
}

TEST_F(CheckTest, WaitingFilesAreNoFault) {
    makeDemo();
    const Ended ended = run({u"check"_s});
    EXPECT_EQ(ended.exitCode, admin::kSuccess);
    EXPECT_EQ(ended.out.count(u"waits for its import"_s), 5);
}

}  // namespace
}  // namespace test
