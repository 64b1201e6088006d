#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QImage>
#include <QTest>
#include <chrono>
#include <future>

#include "platform/termdev/PaperRoll.h"
#include "support/TestDevice.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::termdev;

void print(PaperRoll& roll, int lines) {
    roll.open();
    for (int i = 0; i < lines; ++i) roll.print(u"거래명세서\n");
    roll.close();
}

TEST(PaperRoll, IsDrawnBesideTheUserAndWholeWhenTheProgramEnds) {
    const TestDevice device;
    const QString picture = device.folder() + u"/roll.png"_s;
    const QByteArray name = QFile::encodeName(picture);
    {
        // Whoever reads the earlier picture waits until somebody writes it.
        PaperRoll roll(kRollBytes, 0);
        ASSERT_EQ(::mkfifo(name.constData(), 0600), 0);
        std::promise<void> wentOn;
        const auto write = [&name](int how) { return ::open(name.constData(), O_WRONLY | O_CLOEXEC | how); };
        auto watch = std::async(std::launch::async, [&, isFree = wentOn.get_future()] {
            if (isFree.wait_for(std::chrono::seconds(20)) == std::future_status::ready) return true;
            ::close(write(0));
            return false;
        });
        print(roll, 3);
        int end = -1;
        EXPECT_TRUE(QTest::qWaitFor([&] { return (end = write(O_NONBLOCK)) >= 0; }, 30'000));
        wentOn.set_value();
        EXPECT_TRUE(watch.get()) << "the user waits for the picture";
        // More is printed while it is drawn.
        print(roll, 2);
        ::close(end);
    }
    EXPECT_EQ(QImage(picture).size(), QSize(kPaperDots, 5 * kLineDots));

    // What cannot be drawn is on paper all the same.
    QFile::remove(picture);
    ASSERT_EQ(::mkdir(name.constData(), 0700), 0);
    {
        PaperRoll roll;
        print(roll, 1);
        print(roll, 1);
    }
    QFile text(device.folder() + u"/roll.txt"_s);
    ASSERT_TRUE(text.open(QIODevice::ReadOnly));
    EXPECT_EQ(text.readAll().count('\n'), 7);
}

}  // namespace
}  // namespace test
