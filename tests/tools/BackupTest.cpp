#include "AdminTest.h"
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

}  // namespace
}  // namespace test
