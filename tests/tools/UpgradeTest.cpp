#include <QDir>

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
        platform::SqliteFile made(database(), platform::SqliteFile::Mode::Create);
        ASSERT_TRUE(made.execute(
            QString::fromUtf8(readFile(QStringLiteral(ROVANA_TESTS_DIR "/tools/fixtures/first-build.sql")))));
        QFile::setPermissions(database(), QFile::ReadOwner | QFile::WriteOwner);
    }

    QStringList kept() const {
        return QDir(folder() + u"/My Documents"_s).entryList({u"rvnclient.cdb.*"_s}, QDir::Files);
    }
    QStringList savedRows() {
        QStringList all;
        for (const QString& table : {u"GARAE"_s, u"MTM"_s, u"MTMOK"_s, u"YTM"_s, u"PDAUSER"_s, u"config"_s})
            all += rows(u"SELECT * FROM "_s + table);
        return all;
    }
    QString version() { return rows(u"PRAGMA user_version"_s).value(0); }
};

TEST_F(UpgradeTest, BringsTheFirstBuildsDatabaseUpOnceAndChangesNoRow) {
    // The day's close came without its last column.
    execute(
        u"CREATE TABLE DAYCLOSE (DDate TEXT, UserID TEXT, ClosedAt TEXT, CountedCash TEXT, ExpectedCash "
        u"TEXT, "
        "Cash TEXT, Card TEXT, Approvals TEXT, Unpaid TEXT, EarlierPaid TEXT, Recovery TEXT, Boxes TEXT, "
        "Bottles TEXT, CratesBack TEXT, BottlesBack TEXT)"_s);
    const QStringList before = savedRows();
    EXPECT_TRUE(db::needsUpgrade());
    EXPECT_EQ(narrow(db::databaseProblem()), "") << "it works without what came later";
    platform::adoce::DatabaseFile::forgetAll();

    const Ended first = run({u"upgrade"_s});
    ASSERT_EQ(first.exitCode, admin::kSuccess) << narrow(first.err);
    for (const QString& what : {u"table PRINTLOG"_s, u"table PAYJOURNAL"_s, u"column DAYCLOSE.OpenSlips"_s,
                                u"index MTM_CUSTOMER"_s, u"%1, was 0"_s.arg(db::schema::kVersion)}) {
        EXPECT_EQ(first.out.count(what), 1) << narrow(what) << narrow(first.out);
    }
    EXPECT_EQ(savedRows(), before);
    EXPECT_EQ(version(), QString::number(db::schema::kVersion));
    EXPECT_EQ(run({u"check"_s}).exitCode, admin::kSuccess);
    EXPECT_FALSE(db::needsUpgrade());
    platform::adoce::DatabaseFile::forgetAll();

    ASSERT_EQ(kept().size(), 1);
    EXPECT_TRUE(first.out.contains(kept().first()));
    EXPECT_TRUE(run({u"upgrade"_s}).out.contains(u"nothing to do"_s));
    EXPECT_EQ(kept().size(), 1);
    // Back to the old one, which a restore completes as well.
    EXPECT_EQ(run({u"restore"_s, folder() + u"/My Documents/"_s + kept().first()}).exitCode, admin::kSuccess);
    EXPECT_EQ(savedRows(), before);
    EXPECT_EQ(version(), QString::number(db::schema::kVersion));
}

TEST_F(UpgradeTest, RefusesWhatIsNotAnOlderTerminalsAndLeavesItAsItWas) {
    const struct {
        QString spoil;
        QString reason;
    } cases[] = {
        {u"PRAGMA user_version=%1"_s.arg(db::schema::kVersion + 1), u"a newer Rovana made it"_s},
        {u"ALTER TABLE JGUBUN ADD COLUMN more TEXT"_s, u"columns of JGUBUN"_s},
        // Made in the transaction after others, so those have to go again.
        {u"CREATE VIEW PAYJOURNAL_STATE AS SELECT 1"_s, u"PAYJOURNAL_STATE"_s},
    };
    for (const auto& [spoil, reason] : cases) {
        SetUp();
        execute(spoil);
        const QStringList before = rows(u"SELECT name, sql FROM sqlite_schema"_s) + QStringList{version()};
        const Ended refused = run({u"upgrade"_s});
        EXPECT_EQ(refused.exitCode, admin::kFailure) << narrow(refused.out);
        EXPECT_TRUE(refused.err.contains(reason)) << narrow(refused.err);
        EXPECT_EQ(rows(u"SELECT name, sql FROM sqlite_schema"_s) + QStringList{version()}, before);
        EXPECT_EQ(kept(), QStringList());
    }
    QFile::remove(database());
    platform::SqliteFile other(database(), platform::SqliteFile::Mode::Create);
    ASSERT_TRUE(other.execute(u"CREATE TABLE t (a)"_s));
    EXPECT_TRUE(run({u"upgrade"_s}).err.contains(u"no table of a terminal"_s));
    SetUp();
    // A terminal that has read once keeps the database open.
    QString error;
    const auto terminal = platform::adoce::DatabaseFile::shared(database(), &error);
    ASSERT_TRUE(terminal && terminal->begin()) << narrow(error);
    terminal->rollback();
    const Ended refused = run({u"upgrade"_s});
    EXPECT_TRUE(refused.err.contains(u"close the terminal first"_s)) << narrow(refused.err + refused.out);
}

}  // namespace
}  // namespace test
