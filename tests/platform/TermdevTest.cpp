#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QStringList>

#include "platform/Trace.h"
#include "platform/termdev/PaperRoll.h"
#include "platform/termdev/TermDev.h"
#include "support/Pump.h"
#include "support/Roll.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::termdev;

class Roll : public testing::Test {
  protected:
    Roll() { setPrinter(nullptr); }

    QImage picture() const { return QImage(device_.folder() + u"/roll.png"_s); }

    /// Rows with ink among the dots of `image` from `top` on.
    static int inkedRows(const QImage& image, int top, int height) {
        int rows = 0;
        for (int y = top; y < top + height; ++y) {
            bool hasInk = false;
            for (int x = 0; x < image.width(); ++x) hasInk = hasInk || qGray(image.pixel(x, y)) < 128;
            rows += hasInk;
        }
        return rows;
    }

    /// One job of the given prints through the roll itself.
    static void print(std::initializer_list<QStringView> texts, int feed = 0) {
        PaperRoll roll;
        roll.open();
        roll.initialise();
        for (const QStringView text : texts) roll.print(text);
        if (feed > 0) roll.feed(feed);
        roll.close();
    }

    test::TestDevice device_;
};

TEST_F(Roll, TextFollowsThePaper) {
    struct Case {
        const char16_t* what;
        QStringList prints;
        QString paper;
    };
    const QString full(32, u'x');
    const Case cases[] = {
        {u"pieces of one line", {u"가"_s, u"나\n"_s}, u"가나\n"_s},
        {u"a line without its end", {u"가"_s}, u"가\n"_s},
        {u"a full line makes no empty one", {full + u'\n'}, full + u'\n'},
        {u"a longer one goes on below", {full + u"y\n"_s}, full + u"\ny\n"_s},
        {u"a wide character does not straddle the edge",
         {QString(31, u'x') + u"가\n"_s},
         QString(31, u'x') + u"\n가\n"_s},
        {u"across two prints", {full, u"y\n"_s}, full + u"\ny\n"_s},
        {u"opened for the card reader only", {}, u""_s},
    };
    for (const Case& entry : cases) {
        test::resetRoll();
        PaperRoll roll;
        roll.open();
        for (const QString& text : entry.prints) roll.print(text);
        roll.close();
        EXPECT_EQ(test::rollText().toStdString(), entry.paper.toStdString())
            << QString::fromUtf16(entry.what).toStdString();
    }
}

TEST_F(Roll, PictureGoesOnAndKeepsTheEnd) {
    test::needApplication();
    print({u"첫째\n"});
    const QImage first = picture();
    print({u"둘째\n"});
    EXPECT_EQ(picture().copy(0, 0, 384, kLineDots), first.convertToFormat(picture().format()));
    EXPECT_EQ(picture().height(), 2 * kLineDots);

    device_.writeFile(u"\\roll.png", "no picture");
    print({u"셋째\n"});
    EXPECT_EQ(picture().height(), kLineDots) << "a spoilt picture starts anew";

    print({u"끝\n"}, kRollDots / kLineDots + 1);
    print({u"끝\n"});
    EXPECT_EQ(picture().height(), kRollDots);
    EXPECT_GT(inkedRows(picture(), kRollDots - kLineDots, kLineDots), 10);
    EXPECT_EQ(inkedRows(picture(), 0, kRollDots - kLineDots), 0) << "the oldest paper goes first";
}

TEST_F(Roll, TextTurnsOverAtItsLimit) {
    for (int job = 0; job < 10; ++job) {
        PaperRoll roll(40);
        roll.open();
        roll.print(u"job %1 ---------\n"_s.arg(job));
        roll.close();
        ASSERT_LE(test::rollText().size(), 40);
    }
    QFile older(device_.folder() + u"/roll.txt.1"_s);
    ASSERT_TRUE(older.open(QIODevice::ReadOnly));
    EXPECT_EQ(older.readAll() + test::rollText().toUtf8(),
              "job 6 ---------\njob 7 ---------\njob 8 ---------\njob 9 ---------\n");
}

TEST_F(Roll, FailureIsTracedOnly) {
    ASSERT_TRUE(QDir(device_.folder()).mkdir(u"roll.txt"_s));
    QStringList traces;
    platform::setTraceObserver([&](QStringView text) { traces << text.toString(); });
    print({u"글\n"});
    platform::setTraceObserver({});
    EXPECT_EQ(traces.size(), 1);
    ASSERT_TRUE(QDir(device_.folder()).rmdir(u"roll.txt"_s));
    print({u"다음\n"});
    EXPECT_EQ(test::rollText(), u"다음\n"_s) << "the job that failed does not come back";
}

}  // namespace
