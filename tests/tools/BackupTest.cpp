#include <sys/file.h>

#include <QDir>
#include <QFileInfo>

#include "AdminTest.h"
#include "support/FullDisk.h"

namespace test {
namespace {

/// The files of a folder, hidden ones too.
QStringList filesOf(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

class BackupTest : public AdminTest {
  protected:
    void SetUp() override { makeDevice(); }

    void name(const QString& name) { execute(u"UPDATE PDAUSER SET userNAME = '%1'"_s.arg(name)); }
    QStringList names() { return rows(u"SELECT userNAME FROM PDAUSER"_s); }
    QString documents() const { return folder() + u"/My Documents"_s; }
    QString file() const { return folder() + u"/safe.cdb"_s; }
    void backUp() { ASSERT_EQ(run({u"backup"_s, file()}).exitCode, admin::kSuccess); }

    /// The database that the restore kept; its name is told and for nobody else's eyes.
    QString keptBy(const Ended& restored) {
        EXPECT_EQ(restored.exitCode, admin::kSuccess) << narrow(restored.err);
        const QStringList kept = QDir(documents()).entryList({u"rvnclient.cdb.2*"_s}, QDir::Files);
        EXPECT_EQ(kept.size(), 1);
        if (kept.isEmpty()) return {};
        const QString path = documents() + u'/' + kept.first();
        EXPECT_TRUE(restored.out.contains(path)) << narrow(restored.out);
        EXPECT_FALSE(QFileInfo(path).permissions() & (QFile::ReadGroup | QFile::ReadOther));
        return path;
    }

    /// Whether the command refused for that reason and left every file as it was.
    void expectRefused(const QStringList& call, const QString& reason) {
        const QStringList before = filesOf(folder()) + filesOf(documents());
        const QByteArray content = readFile(database());
        const Ended ended = run(call);
        EXPECT_EQ(ended.exitCode, admin::kFailure) << narrow(call.join(u' '));
        EXPECT_TRUE(ended.err.contains(reason)) << narrow(ended.err);
        EXPECT_EQ(filesOf(folder()) + filesOf(documents()), before);
        EXPECT_TRUE(readFile(database()) == content) << narrow(call.join(u' '));
    }
};

/// A terminal's connection: the write-ahead log stays open.
std::shared_ptr<platform::adoce::DatabaseFile> openTerminal(const QString& database) {
    QString error;
    auto terminal = platform::adoce::DatabaseFile::shared(database, &error);
    EXPECT_TRUE(terminal) << narrow(error);
    return terminal;
}

TEST_F(BackupTest, CopiesWhatIsSavedWhileATerminalIsInTheMiddleOfAChange) {
    name(u"before"_s);
    auto terminal = openTerminal(database());
    name(u"saved"_s);  // Only in the write-ahead log.
    ASSERT_TRUE(terminal->begin());
    ASSERT_TRUE(terminal->sqlite().execute(u"UPDATE PDAUSER SET userNAME = 'half'"_s));
    backUp();
    terminal->rollback();

    EXPECT_FALSE(QFileInfo(file()).permissions() & (QFile::ReadGroup | QFile::ReadOther));
    // One file that a medium which cannot be written gives back.
    EXPECT_EQ(readFile(file()).mid(18, 2), QByteArray("\1\1"));
    EXPECT_EQ(filesOf(folder()), QStringList{u"safe.cdb"_s});

    expectRefused({u"restore"_s, file()}, u"close the terminal first"_s);
    expectRefused({u"check"_s, u"--repair"_s}, u"close the terminal first"_s);
    terminal.reset();
    platform::adoce::DatabaseFile::forgetAll();
    name(u"after"_s);
    const QString kept = keptBy(run({u"restore"_s, file()}));
    EXPECT_EQ(names(), QStringList{u"saved"_s});
    EXPECT_EQ(run({u"check"_s}).exitCode, admin::kSuccess);
    EXPECT_TRUE(readFile(kept).contains("after"));
}

TEST_F(BackupTest, RefusesAndLeavesEverythingAsItWas) {
    backUp();
    name(QString(20000, u'x'));
    QByteArray torn = readFile(file());
    torn.replace(8192, 4096, QByteArray(4096, '\xA5'));
    writeFile(u"torn.cdb"_s, torn);
    platform::SqliteFile other(folder() + u"/other.cdb"_s, platform::SqliteFile::Mode::Create);
    ASSERT_TRUE(other.execute(u"CREATE TABLE t (a)"_s));
    const struct {
        QStringList call;
        QString reason;
    } cases[] = {
        {{u"backup"_s, file()}, u"--force replaces it"_s},
        {{u"backup"_s, u"--force"_s, database()}, u"is the database itself"_s},
        {{u"restore"_s, database()}, u"is the database itself"_s},
        {{u"restore"_s, folder() + u"/torn.cdb"_s}, u"no sound backup"_s},
        {{u"restore"_s, folder() + u"/other.cdb"_s}, u"no table of a terminal"_s},
    };
    for (const auto& [call, reason] : cases) expectRefused(call, reason);
    {
        const FullDisk disk(60000);
        expectRefused({u"backup"_s, u"--force"_s, file()}, u"KB free"_s);
        expectRefused({u"restore"_s, file()}, u"cannot be kept"_s);
    }
    EXPECT_EQ(run({u"backup"_s, u"--force"_s, file()}).exitCode, admin::kSuccess);
    EXPECT_TRUE(readFile(file()).contains("xxxx"));
}

TEST_F(BackupTest, ReplacesADatabaseThatIsDamagedOrGoneAndCompletesAnOlderOne) {
    name(u"saved"_s);
    execute(u"DROP TABLE IMPORTLOG; DROP INDEX GARAE_SEEK"_s);
    backUp();
    ASSERT_TRUE(QFile::remove(database()));
    EXPECT_EQ(run({u"restore"_s, file()}).exitCode, admin::kSuccess);
    EXPECT_EQ(names(), QStringList{u"saved"_s});

    const QByteArray ruin(50000, 'x');
    writeFile(u"My Documents/rvnclient.cdb"_s, ruin);
    EXPECT_TRUE(readFile(keptBy(run({u"restore"_s, file()}))) == ruin);
    EXPECT_EQ(names(), QStringList{u"saved"_s});
    EXPECT_EQ(run({u"check"_s}).exitCode, admin::kSuccess);
}

TEST_F(BackupTest, RestoringForgetsNoPayment) {
    execute(
        u"INSERT INTO PAYJOURNAL (Number, State) VALUES ('a', 'approved'), ('b', 'sent'), ('c', 'sent')"_s);
    name(u"saved"_s);
    backUp();
    name(u"later"_s);
    execute(
        u"UPDATE PAYJOURNAL SET State = 'approved', BANKTRANNO = '1' WHERE Number = 'b'; "
        "UPDATE PAYJOURNAL SET State = 'released' WHERE Number = 'c'; "
        "INSERT INTO PAYJOURNAL (Number, State, BANKTRANNO) VALUES ('d', 'unknown', ''), "
        "('e', 'approved', '2')"_s);
    const QStringList before = filesOf(documents());
    platform::SqliteFile backup(file(), platform::SqliteFile::Mode::Existing);
    ASSERT_TRUE(backup.execute(
        u"CREATE TRIGGER broken BEFORE INSERT ON PAYJOURNAL BEGIN SELECT RAISE(ABORT, 'no'); END"_s));
    expectRefused({u"restore"_s, file()}, u"cannot be carried over"_s);
    ASSERT_TRUE(backup.execute(u"DROP TRIGGER broken"_s));
    keptBy(run({u"restore"_s, file()}));
    EXPECT_EQ(names(), QStringList{u"saved"_s});
    // What the slips of the backup do not show as paid is asked again; what is new is known.
    EXPECT_EQ(rows(u"SELECT Number || State FROM PAYJOURNAL ORDER BY Number"_s).join(u' '),
              u"aapproved bsent creleased dunknown eapproved"_s);
    EXPECT_EQ(filesOf(documents()).size(), before.size() + 1) << "the kept one alone";
}

}  // namespace
}  // namespace test
