#include <QDir>

#include "AdminTest.h"
#include "db/MasterImport.h"

namespace test {
namespace {

using InitTest = AdminTest;

TEST_F(InitTest, MakesADeviceThatIsComplete) {
    ASSERT_EQ(run({u"init"_s}).exitCode, admin::kSuccess);
    EXPECT_EQ(run({u"check"_s}).exitCode, admin::kSuccess);
    EXPECT_EQ(rows(u"SELECT userID, userPASS FROM PDAUSER"_s), QStringList{u"A|1111"_s});
    EXPECT_EQ(rows(u"SELECT COUNT(*) FROM JGUBUN"_s), QStringList{u"6"_s});
    EXPECT_EQ(rows(u"SELECT COUNT(*) FROM GARAE"_s), QStringList{u"0"_s});
    EXPECT_EQ(readFile(platform::device::path(platform::device::kSettingsFile)).left(1), "A");
    EXPECT_FALSE(db::isImportWaiting());
}

TEST_F(InitTest, NeverReplacesADatabase) {
    makeDevice();
    execute(u"UPDATE PDAUSER SET userNAME = '원래'"_s);
    const QByteArray before = readFile(database());
    for (const QStringList& arguments : {QStringList{u"init"_s}, QStringList{u"init"_s, u"--demo"_s}}) {
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.exitCode, admin::kFailure);
        EXPECT_TRUE(ended.err.contains(database())) << narrow(ended.err);
    }
    EXPECT_EQ(readFile(database()), before);
    EXPECT_FALSE(db::isImportWaiting());
}

TEST_F(InitTest, NeverReplacesWaitingOrders) {
    ASSERT_TRUE(QDir(folder()).mkpath(u"My Documents"_s));
    const QString orders = writeFile(u"My Documents/MTM.RVN"_s, "somebody's");
    const Ended ended = run({u"init"_s, u"--demo"_s});
    EXPECT_EQ(ended.exitCode, admin::kFailure);
    EXPECT_TRUE(ended.err.contains(u"MTM.RVN"_s)) << narrow(ended.err);
    EXPECT_EQ(readFile(orders), "somebody's");
    EXPECT_FALSE(QFile::exists(database()));
}

TEST_F(InitTest, StartsAfreshAfterARunThatWasStopped) {
    ASSERT_TRUE(QDir(folder()).mkpath(u"My Documents"_s));
    writeFile(u"My Documents/rvnclient.cdb.new"_s, "half a database");
    writeFile(u"My Documents/GARAE.RVN"_s, "half a file");
    ASSERT_EQ(run({u"init"_s, u"--demo"_s}).exitCode, admin::kSuccess);
    EXPECT_EQ(run({u"check"_s}).exitCode, admin::kSuccess);
    EXPECT_FALSE(QFile::exists(database() + u".new"_s));
    EXPECT_EQ(db::countImportLines(db::importFiles()[1], db::ImportSource::Documents), 120);
}

}  // namespace
}  // namespace test
