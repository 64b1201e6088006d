#include "platform/Trace.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "platform/Clock.h"
#include "platform/Device.h"
#include "support/PrintQt.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

class TraceTest : public testing::Test {
  protected:
    TraceTest() : before_(device::folder()) {
        device::setFolder(folder_.path());
        clock::set(QDateTime(QDate(2004, 3, 2), QTime(9, 30)));
    }
    ~TraceTest() override {
        clock::set({});
        device::setFolder(before_);
    }

    QString log() const { return folder_.filePath(u"rovana.log"_s); }
    QString older() const { return folder_.filePath(u"rovana.log.1"_s); }

    QTemporaryDir folder_;
    QString before_;
};

TEST_F(TraceTest, LogTurnsOverAtItsLimit) {
    constexpr qint64 kLimit = 1000;
    ASSERT_TRUE(openLog(kLimit));
    for (int line = 0; line < 200; ++line) {
        trace(u"line %1\n"_s.arg(line));
        ASSERT_LE(QFileInfo(log()).size(), kLimit);
        ASSERT_LE(QFileInfo(older()).size(), kLimit);
    }
    // Together the two hold the newest lines, none of them broken or missing between.
    const QList<QByteArray> lines = (contentOf(older()) + contentOf(log())).trimmed().split('\n');
    ASSERT_GT(lines.size(), 30);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i], "2004-03-02 09:30:00.000 line " + QByteArray::number(200 - lines.size() + i));
    }
    for (const QString& path : {log(), older()}) {
        EXPECT_EQ(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions{});
    }
}

}  // namespace
}  // namespace platform
