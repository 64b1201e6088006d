#include "platform/Trace.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include "platform/Clock.h"
#include "platform/WholeFile.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(TraceTest, LogTurnsOverAtItsLimit) {
    const test::TestDevice device;
    clock::set(QDateTime(QDate(2004, 3, 2), QTime(9, 30)));
    constexpr qint64 kLimit = 1000;
    ASSERT_TRUE(openLog(kLimit));
    const QString log = device.folder() + u"/rovana.log"_s;
    const QString older = log + u".1"_s;
    for (int line = 0; line < 200; ++line) {
        trace(u"line %1\n"_s.arg(line));
        ASSERT_LE(QFileInfo(log).size(), kLimit);
        ASSERT_LE(QFileInfo(older).size(), kLimit);
    }
    // Together the two hold the newest lines, none of them broken or missing between.
    const QList<QByteArray> lines = (*readWholeFile(older) + *readWholeFile(log)).trimmed().split('\n');
    ASSERT_GT(lines.size(), 30);
    for (qsizetype i = 0; i < lines.size(); ++i)
        EXPECT_EQ(lines[i], "2004-03-02 09:30:00.000 line " + QByteArray::number(200 - lines.size() + i));
    for (const QString& path : {log, older})
        EXPECT_EQ(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions{});
    clock::set({});
}

}  // namespace
}  // namespace platform
