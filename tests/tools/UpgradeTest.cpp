#include "AdminTest.h"
#include "db/Health.h"
#include "db/Schema.h"

namespace test {
namespace {

class UpgradeTest : public AdminTest {
  protected:
    /// The device with the database that the first build made.
    void SetUp() override {
        QFile::remove(database());
        makeDevice();
        ASSERT_TRUE(QFile::remove(database()));
        execute(
            QString::fromUtf8(readFile(QStringLiteral(ROVANA_TESTS_DIR "/tools/fixtures/first-build.sql"))));
        QFile::setPermissions(database(), QFile::ReadOwner | QFile::WriteOwner);
    }

    QStringList kept() const { return filesOf(path(u"My Documents"_s), u"rvnclient.cdb.*"_s); }
    QStringList savedRows() {
        QStringList all;
        for (const QString& table : {u"GARAE"_s, u"MTM"_s, u"MTMOK"_s, u"YTM"_s, u"PDAUSER"_s, u"config"_s})
            all += rows(u"SELECT * FROM "_s + table);
        return all;
    }
    QStringList version() { return rows(u"PRAGMA user_version"_s); }
};
const QStringList before = state();
const Ended refused = run({u"upgrade"_s});
EXPECT_EQ(refused.exitCode, admin::kFailure) << refused.out;
EXPECT_THAT(refused.err, HasSubstr(reason));
EXPECT_EQ(state(), before);
}
};

TEST_F(UpgradeTest, BringsTheFirstBuildsDatabaseUpOnceAndChangesNoRow) {
    // The day's close came without its last column.
    execute(
        u"CREATE TABLE DAYCLOSE (DDate TEXT, UserID TEXT, ClosedAt TEXT, CountedCash TEXT, ExpectedCash "
        u"TEXT, "
        "Cash TEXT, Card TEXT, Approvals TEXT, Unpaid TEXT, EarlierPaid TEXT, Recovery TEXT, Boxes TEXT, "
        "Bottles TEXT, CratesBack TEXT, BottlesBack TEXT)"_s);
    const QStringList before = savedRows();
    const QStringList newest{QString::number(db::schema::kVersion)};
    EXPECT_TRUE(db::needsUpgrade());
    EXPECT_EQ(db::databaseProblem().toStdString(), "") << "it works without what came later";

    const std::string told = ran({u"upgrade"_s});
    for (const char* what : {"table PRINTLOG", "table PAYJOURNAL", "column DAYCLOSE.OpenSlips", ", was 0"})
        EXPECT_THAT(told, HasSubstr(what));
    EXPECT_EQ(savedRows(), before);
    EXPECT_EQ(version(), newest);
    ran({u"check"_s});
    EXPECT_FALSE(db::needsUpgrade());

    ASSERT_EQ(kept().size(), 1);
    EXPECT_THAT(told, HasSubstr(kept().first().toStdString()));
    EXPECT_THAT(ran({u"upgrade"_s}), HasSubstr("nothing to do"));
    EXPECT_EQ(kept().size(), 1);
    // Back to the old one, which a restore completes as well.
    ran({u"restore"_s, path(u"My Documents/"_s + kept().first())});
    EXPECT_EQ(savedRows(), before);
    EXPECT_EQ(version(), newest);
}

TEST_F(UpgradeTest, RefusesWhatIsNotAnOlderTerminalsAndLeavesItAsItWas) {
    const std::pair<QString, const char*> cases[] = {
        {u"PRAGMA user_version=%1"_s.arg(db::schema::kVersion + 1), "a newer Rovana made it"},
        {u"ALTER TABLE JGUBUN ADD COLUMN more TEXT"_s, "columns of JGUBUN"},
        // Made in the transaction after others, so those have to go again.
        {u"CREATE VIEW PAYJOURNAL_STATE AS SELECT 1"_s, "PAYJOURNAL_STATE"},
    };
    for (const auto& [spoil, reason] : cases) {
        SetUp();
        execute(spoil);
        expectRefused({u"upgrade"_s}, reason);
    }
    QFile::remove(database());
    execute(u"CREATE TABLE t (a)"_s);
    expectRefused({u"upgrade"_s}, "no table of a terminal");
    SetUp();
    const auto terminal = openTerminal();
    expectRefused({u"upgrade"_s}, "close the terminal first");
}

}  // namespace
}  // namespace test
