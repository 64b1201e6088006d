#include "AdminTest.h"
#include "db/Health.h"
#include "db/Schema.h"
#include "support/FullDisk.h"

namespace test {
namespace {

class BackupTest : public AdminTest {
  protected:
    void SetUp() override { makeDevice(); }

    void name(const QString& name) { execute(u"UPDATE PDAUSER SET userNAME = '%1'"_s.arg(name)); }
    QString name() { return rows(u"SELECT userNAME FROM PDAUSER"_s).join(u' '); }
    QString documents() const { return path(u"My Documents"_s); }
    QString file() const { return path(u"safe.cdb"_s); }
    void backUp() { ran({u"backup"_s, file()}); }

    /// Restores; returns the database that was kept, whose name is told and which is for nobody else's eyes.
    QString restore() {
        const std::string told = ran({u"restore"_s, file()});
        const QStringList kept = filesOf(documents(), u"rvnclient.cdb.2*"_s);
        EXPECT_EQ(kept.size(), 1);
        const QString path = documents() + u'/' + kept.value(0);
        EXPECT_THAT(told, HasSubstr(path.toStdString()));
        expectForNobodyElse(path);
        ran({u"check"_s});
        return path;
    }
};

TEST_F(BackupTest, CopiesWhatIsSavedWhileATerminalIsInTheMiddleOfAChange) {
    name(u"before"_s);
    auto terminal = openTerminal();
    name(u"saved"_s);  // Only in the write-ahead log.
    ASSERT_TRUE(terminal->execute(u"BEGIN; UPDATE PDAUSER SET userNAME = 'half'"_s));
    backUp();
    ASSERT_TRUE(terminal->execute(u"ROLLBACK"_s));

    expectForNobodyElse(file());
    // One file that a medium which cannot be written gives back.
    EXPECT_EQ(readFile(file()).mid(18, 2), QByteArray("\1\1"));
    EXPECT_EQ(filesOf(folder()), QStringList{u"safe.cdb"_s});

    expectRefused({u"restore"_s, file()}, "close the terminal first");
    expectRefused({u"check"_s, u"--repair"_s}, "close the terminal first");
    terminal.reset();
    name(u"after"_s);
    const QString kept = restore();
    EXPECT_EQ(name(), u"saved"_s);
    EXPECT_TRUE(readFile(kept).contains("after"));
}

TEST_F(BackupTest, RefusesAndLeavesEverythingAsItWas) {
    backUp();
    name(QString(20000, u'x'));
    writeFile(u"torn.cdb"_s, readFile(file()).replace(8192, 4096, QByteArray(4096, '\xA5')));
    executeOn(path(u"other.cdb"_s), u"CREATE TABLE t (a)"_s);
    expectRefused({u"backup"_s, file()}, "--force replaces it");
    expectRefused({u"backup"_s, u"--force"_s, database()}, "is the database itself");
    expectRefused({u"restore"_s, database()}, "is the database itself");
    expectRefused({u"restore"_s, path(u"torn.cdb"_s)}, "no sound backup");
    expectRefused({u"restore"_s, path(u"other.cdb"_s)}, "no table of a terminal");
    {
        const FullDisk disk(60000);
        expectRefused({u"backup"_s, u"--force"_s, file()}, "KB free");
        expectRefused({u"restore"_s, file()}, "cannot be kept");
    }
    ran({u"backup"_s, u"--force"_s, file()});
    EXPECT_TRUE(readFile(file()).contains("xxxx"));
}

TEST_F(BackupTest, ReplacesADatabaseThatIsDamagedOrGoneAndCompletesAnOlderOne) {
    name(u"saved"_s);
    execute(u"DROP TABLE IMPORTLOG; DROP INDEX GARAE_SEEK"_s);
    backUp();
    QByteArray log;
    {
        const auto terminal = openTerminal();
        name(u"later"_s);
        log = readFile(database() + u"-wal"_s);
    }
    ASSERT_TRUE(QFile::remove(database()));
    // Left without its database, it would be taken for the other one's.
    writeFile(u"My Documents/rvnclient.cdb-wal"_s, log);
    ran({u"restore"_s, file()});
    EXPECT_EQ(name(), u"saved"_s);

    const QByteArray ruin(50000, 'x');
    writeFile(u"My Documents/rvnclient.cdb"_s, ruin);
    EXPECT_TRUE(readFile(restore()) == ruin);
    EXPECT_EQ(name(), u"saved"_s);
}

TEST_F(BackupTest, RestoringForgetsNoPayment) {
    execute(
        u"INSERT INTO PAYJOURNAL (Number, State) VALUES ('a', 'approved'), ('b', 'sent'), ('c', 'sent')"_s);
    name(u"saved"_s);
    backUp();
    execute(
        uR"(UPDATE PDAUSER SET userNAME = 'later';
        UPDATE PAYJOURNAL SET State = 'approved', BANKTRANNO = '1' WHERE Number = 'b';
        UPDATE PAYJOURNAL SET State = 'released' WHERE Number = 'c';
        INSERT INTO PAYJOURNAL (Number, State, BANKTRANNO) VALUES ('p', 'prepared', ''), ('d', 'unknown', ''), ('e', 'approved', '2'))"_s);
    const QStringList before = filesOf(documents());
    executeOn(file(),
              u"CREATE TRIGGER broken BEFORE INSERT ON PAYJOURNAL BEGIN SELECT RAISE(ABORT, 'no'); END"_s);
    expectRefused({u"restore"_s, file()}, "cannot be carried over");
    executeOn(file(), u"DROP TRIGGER broken"_s);
    restore();
    EXPECT_EQ(name(), u"saved"_s);
    // What the slips of the backup do not show as paid is asked again; what is new is known.
    EXPECT_EQ(rows(u"SELECT Number || State FROM PAYJOURNAL ORDER BY Number"_s).join(u' '),
              u"aapproved bsent creleased dunknown eapproved"_s);
    EXPECT_EQ(filesOf(documents()).size(), before.size() + 1) << "the kept one alone";
}

class UpgradeTest : public AdminTest {
  protected:
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

TEST_F(UpgradeTest, BringsTheFirstBuildsDatabaseUpOnceAndChangesNoRow) {
    execute(
        uR"(CREATE TABLE DAYCLOSE (DDate TEXT, UserID TEXT, ClosedAt TEXT, CountedCash TEXT, ExpectedCash TEXT,
            Cash TEXT, Card TEXT, Approvals TEXT, Unpaid TEXT, EarlierPaid TEXT, Recovery TEXT, Boxes TEXT,
            Bottles TEXT, CratesBack TEXT, BottlesBack TEXT))"_s);
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
