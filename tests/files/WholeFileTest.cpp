#include "platform/WholeFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <thread>
#include <vector>

#include "support/PrintQt.h"
#include "support/SystemCalls.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::WholeFile;
using platform::writeWholeFile;

class WholeFileTest : public ::testing::Test {
  protected:
    QByteArray content(const QString& name = u"a.txt"_s) {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }
    QStringList names() { return QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }

    QTemporaryDir folder;
    QString path = folder.filePath(u"a.txt"_s);
};

TEST_F(WholeFileTest, IsOnTheDiskBeforeItHasItsName) {
    const QStringList order{u"write a.txt.unfinished"_s, u"sync a.txt.unfinished"_s, u"rename a.txt"_s,
                            u"sync ."_s};
    SystemCalls calls(folder.path());
    ASSERT_TRUE(writeWholeFile(path, "old"));
    EXPECT_EQ(calls.take(), order);
    for (int failing = 0; failing < order.size(); ++failing) {
        calls.failAt(failing);
        QString error;
        EXPECT_FALSE(writeWholeFile(path, "new", &error)) << failing;
        EXPECT_EQ(error, QString::fromLocal8Bit(std::strerror(EIO)));
        EXPECT_EQ(names(), QStringList{u"a.txt"_s}) << order[failing].toStdString();
        // A folder that is not on the disk yet holds the new file all the same.
        EXPECT_EQ(content(), failing == order.size() - 1 ? "new" : "old");
        calls.take();
    }
    calls.shortenWrites(3);
    ASSERT_TRUE(writeWholeFile(path, "in three"));
    EXPECT_EQ(content(), "in three");
}

TEST_F(WholeFileTest, ReplacesKeepsAndFollowsWhatIsThere) {
    // What a killed program left, longer and open to all.
    QFile left(path + u".unfinished"_s);
    ASSERT_TRUE(left.open(QIODevice::WriteOnly) && left.write("left by a killed program") > 0);
    left.close();
    ASSERT_EQ(::chmod(QFile::encodeName(left.fileName()).constData(), 0666), 0);
    ASSERT_TRUE(writeWholeFile(path, "one"));
    EXPECT_EQ(content(), "one");
    EXPECT_EQ(names(), QStringList{u"a.txt"_s});
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, mode_t(0600));

    EXPECT_FALSE(writeWholeFile(path, "two", nullptr, WholeFile::IfThere::Keep));
    EXPECT_EQ(content(), "one");
    ASSERT_TRUE(writeWholeFile(folder.filePath(u"b.txt"_s), "b", nullptr, WholeFile::IfThere::Keep));
    ASSERT_TRUE(QFile::link(path, folder.filePath(u"link"_s)));
    ASSERT_TRUE(writeWholeFile(folder.filePath(u"link"_s), "three"));
    EXPECT_EQ(content(), "three");
    EXPECT_EQ(names(), QStringList({u"a.txt"_s, u"b.txt"_s, u"link"_s}));

    {
        WholeFile dropped(path);
        ASSERT_TRUE(dropped.write("never named"));
    }
    EXPECT_EQ(content(), "three");
    EXPECT_FALSE(writeWholeFile(folder.filePath(u"no folder/c"_s), "c"));
    EXPECT_EQ(names().size(), 3);
}

TEST_F(WholeFileTest, ManyWritersLeaveOneOfTheirContents) {
    constexpr int kWriters = 4;
    constexpr qsizetype kBytes = 20'000;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < kWriters; ++writer) {
        writers.emplace_back([this, writer] {
            for (int i = 0; i < 20; ++i)
                EXPECT_TRUE(writeWholeFile(path, QByteArray(kBytes + writer, char('a' + writer))));
        });
    }
    for (std::thread& writer : writers) writer.join();
    const QByteArray last = content();
    ASSERT_GE(last.size(), kBytes);
    EXPECT_EQ(last, QByteArray(kBytes + (last[0] - 'a'), last[0]));
    EXPECT_EQ(names(), QStringList{u"a.txt"_s});
}

}  // namespace
}  // namespace test
