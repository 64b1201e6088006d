#include <gtest/gtest.h>

#include <QDir>
#include <QStringList>

#include "platform/Trace.h"
#include "platform/termdev/PaperRoll.h"
#include "platform/termdev/TermDev.h"
#include "support/Roll.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::termdev;

class Roll : public testing::Test {
  protected:
    Roll() { setPrinter(nullptr); }

    /// One job of the given prints through the roll itself.
    static void print(std::initializer_list<QStringView> texts) {
        PaperRoll roll;
        roll.open();
        roll.initialise();
        for (const QStringView text : texts) roll.print(text);
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
