#include <sys/stat.h>
#include <unistd.h>

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
        bool isMended = false;
    } cases[] = {
        {u"DROP TABLE YTEMP"_s, u"table YTEMP"_s, true},
        {u"DROP INDEX GARAE_SEEK"_s, u"index GARAE_SEEK"_s, true},
        {u"DROP INDEX GARAEDANGA_KEY; CREATE INDEX GARAEDANGA_KEY ON GARAEDANGA (pcode, gcode)"_s,
         u"index GARAEDANGA_KEY"_s, true},
        // An index that knows only some of the rows.
        {u"INSERT INTO GARAE (GCODE) VALUES ('0001'), ('0002'); DROP INDEX GARAE_GCODE; CREATE INDEX "
         "GARAE_GCODE ON GARAE (GCODE) WHERE GCODE > '0001'; PRAGMA writable_schema = ON; UPDATE "
         "sqlite_schema "
         "SET sql = 'CREATE INDEX GARAE_GCODE ON GARAE (GCODE)' WHERE name = 'GARAE_GCODE'"_s,
         u"damaged"_s, true},
        {u"DROP TABLE TEMP; CREATE TABLE TEMP AS SELECT * FROM YTEMP"_s, u"columns of TEMP"_s},
        {u"ALTER TABLE JGUBUN ADD COLUMN more TEXT"_s, u"columns of JGUBUN"_s},
        {u"DELETE FROM config"_s, u"config has 0 rows"_s},
        {u"UPDATE PDAUSER SET userID = 'Q'"_s, u"who is not in PDAUSER"_s},
        {u"INSERT INTO PDAUSER (userID) VALUES ('a')"_s, u"the user \"a\" cannot log in"_s},
        {u"INSERT INTO PDAUSER (userID) VALUES ('AB')"_s, u"the user \"AB\" cannot log in"_s},
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

TEST_F(CheckTest, NamesFaultsOfTheFolder) {
    const QString documents = folder() + u"/My Documents/"_s;
    const struct {
        std::function<void()> spoil;
        QString wrong;
        bool isMended = true;
    } cases[] = {
        {[&] { QDir(folder() + u"/저장소카드"_s).removeRecursively(); }, u"저장소카드"_s},
        {[&] { QFile::setPermissions(database(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther); },
         u"others may read"_s},
        {[&] { writeFile(u"My Documents/GARAE.RVN.rejected"_s, "1\n"); }, u"GARAE.RVN.rejected"_s, false},
        {[&] { writeFile(u"My Documents/garae.rvn.rejected"_s, "1\n"); }, u"garae.rvn.rejected"_s, false},
        {[&] { execute(u"INSERT INTO IMPORTREJECT (Number) VALUES ('1')"_s); }, u"IMPORTREJECT holds 1"_s,
         false},
        {[&] { writeFile(u"My Documents/rvnclient.cdb.new"_s, "x"); }, u"a restore that was stopped"_s},
        {[&] { writeFile(u"My Documents/rvnclient.cdb.unfinished-a7Xk2Q"_s, "x"); },
         u"a restore that was stopped"_s},
        {[&] { writeFile(u"My Documents/rvnclient.cdb.20261121-0900.unfinished-a7Xk2Q-wal"_s, "x"); },
         u"a restore that was stopped"_s},
        {[&] { writeFile(u"rovana.conf"_s, "[printer]\ntype = slate\n"); },
         u"rovana.conf, line 2: \"slate\""_s, false},
        // As a terminal has it that was set up before terminals had keys of their own.
        {[&] {
             writeFile(u"Flash Disk/KSNETMSG.ini"_s, "101=4711\n");
             writeFile(u"Flash Disk/KSNETMSG.pub"_s, QByteArray(64, 'a'));
         },
         u"KSNETMSG.key with the terminal's own key is missing"_s, false},
    };
    for (const auto& [spoil, wrong, isMended] : cases) {
        QDir(documents).removeRecursively();
        QFile::remove(folder() + u"/rovana.conf"_s);
        makeDevice();
        writeFile(u"My Documents/rvnclient.cdb.backup"_s, "the administrator's");
        ASSERT_EQ(run({u"check"_s}).exitCode, admin::kSuccess);
        spoil();
        expectFinding(wrong);
        execute(u"INSERT INTO YTEMP DEFAULT VALUES"_s);
        EXPECT_TRUE(run({u"check"_s, u"--repair"_s}).out.contains(u"mended: YTEMP holds 1 rows"_s));
        const Ended again = run({u"check"_s});
        EXPECT_EQ(again.exitCode, isMended ? admin::kSuccess : admin::kFailure) << narrow(wrong);
        EXPECT_FALSE(again.out.contains(u"YTEMP"_s));
        execute(u"INSERT INTO YTEMP DEFAULT VALUES; INSERT INTO UNSAVED VALUES ('YTEMP', 'A', '1')"_s);
        EXPECT_TRUE(run({u"check"_s, u"--repair"_s}).out.contains(u"to user A at login"_s));
        EXPECT_EQ(rows(u"SELECT count(*) FROM YTEMP"_s), QStringList{u"1"_s});
        EXPECT_TRUE(QFile::exists(documents + u"rvnclient.cdb.backup"_s));
    }
}

// As on a medium that is mounted read-only, of which the superuser's rights make no exception.
TEST_F(CheckTest, ExaminesWhatItCannotWrite) {
    makeDevice();
    execute(u"PRAGMA journal_mode=WAL; UPDATE config SET sangho = 'saved'"_s);
    const QString documents = folder() + u"/My Documents"_s;
    const auto permit = [&](mode_t folders, mode_t files) {
        for (const QString& path : {folder(), documents, folder() + u"/Flash Disk"_s})
            ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), folders), 0);
        for (const QFileInfo& file : QDir(documents).entryInfoList(QDir::Files))
            ASSERT_EQ(::chmod(QFile::encodeName(file.filePath()).constData(), files), 0);
    };
    const auto checkAsNobody = [&] {
        const uid_t user = ::geteuid();
        permit(0555, 0444);
        EXPECT_EQ(user == 0 ? ::seteuid(65534) : 0, 0);
        const QString out = run({u"check"_s}).out;
        EXPECT_EQ(::seteuid(user), 0);
        permit(0755, 0600);
        return out;
    };
    QString out = checkAsNobody();
    EXPECT_TRUE(out.contains(documents + u"/ cannot be written"_s)) << narrow(out);
    EXPECT_FALSE(out.contains(u"damaged"_s) || out.contains(u"PDAUSER"_s)) << narrow(out);
    execute(u"DELETE FROM PDAUSER"_s);
    EXPECT_TRUE(checkAsNobody().contains(u"PDAUSER is empty"_s)) << "it is read all the same";

    // What a killed terminal saved last, without the file that leads SQLite through it.
    writeFile(u"My Documents/rvnclient.cdb-wal"_s, "x");
    out = checkAsNobody();
    EXPECT_TRUE(out.contains(u"cannot be examined where nothing can be written"_s)) << narrow(out);
    EXPECT_FALSE(out.contains(u"damaged"_s)) << narrow(out);
}

}  // namespace
}  // namespace test
