#include <QDir>

#include "AdminTest.h"
#include "db/MasterImport.h"

namespace test {
namespace {

using InitTest = AdminTest;

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

}  // namespace
}  // namespace test
