#include "platform/WholeFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cerrno>
#include <cstring>

#include "support/FullDisk.h"
#include "support/PrintQt.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::WholeFile;
using platform::writeWholeFile;

TEST(WholeFileTest, ReplacesKeepsAndFollowsWhatIsThereOrLeavesItAsItWas) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.txt"_s);
    const auto names = [&] {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).join(u' ');
    };
    const auto content = [&] { return platform::readWholeFile(path).value_or("(missing)"); };
    // What a killed program left, longer and open to all.
    QFile left(path + u".unfinished"_s);
    ASSERT_TRUE(left.open(QIODevice::WriteOnly) && left.write("left by a killed program") > 0);
    left.close();
    ASSERT_EQ(::chmod(QFile::encodeName(left.fileName()).constData(), 0666), 0);
    ASSERT_TRUE(writeWholeFile(path, "one"));
    EXPECT_EQ(content(), "one");
    EXPECT_EQ(names(), u"a.txt");
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, mode_t(0600));

    EXPECT_FALSE(writeWholeFile(path, "two", nullptr, WholeFile::IfThere::Keep));
    EXPECT_EQ(content(), "one");
    ASSERT_TRUE(writeWholeFile(folder.filePath(u"b.txt"_s), "b", nullptr, WholeFile::IfThere::Keep));
    ASSERT_TRUE(QFile::link(path, folder.filePath(u"link"_s)));
    ASSERT_TRUE(writeWholeFile(folder.filePath(u"link"_s), "three"));
    EXPECT_EQ(content(), "three");

    {
        WholeFile dropped(path);
        ASSERT_TRUE(dropped.write("never named"));
    }
    QString error;
    {
        const FullDisk full(1);
        EXPECT_FALSE(writeWholeFile(path, "new", &error));
    }
    EXPECT_EQ(error, QString::fromLocal8Bit(std::strerror(EFBIG)));
    EXPECT_EQ(content(), "three");
    EXPECT_FALSE(writeWholeFile(folder.filePath(u"no folder/c"_s), "c"));
    EXPECT_EQ(names(), u"a.txt b.txt link");
}

}  // namespace
}  // namespace test
