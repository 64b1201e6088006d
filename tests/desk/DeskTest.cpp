#include "desk/Desk.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QImage>
#include <QScrollBar>
#include <QTest>

#include "desk/CardSlot.h"
#include "desk/DeskPrinter.h"
#include "desk/PaperView.h"
#include "desk/StatusStrip.h"
#include "platform/termdev/CardReader.h"
#include "platform/termdev/PaperRoll.h"
#include "platform/termdev/TermDev.h"
#include "support/PrintQt.h"
#include "support/Roll.h"
#include "support/TestDevice.h"
#include "ui/Terminal.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::termdev;

constexpr int kMargin = 40;  // dots of blank paper around a saved picture

/// A job on the printer in use, as the screens print.
void printByOrdinal(const char16_t* line) {
    std::get<int (*)()>(operation(1))();
    std::get<int (*)(int)>(operation(10))(4);
    std::get<int (*)(const char16_t*)>(operation(11))(line);
    std::get<int (*)()>(operation(2))();
}

class DeskTest : public testing::Test {
  protected:
    /// The desk as the program shows it; made after the paper that is there before.
    desk::Desk& open() {
        terminal_ = new ui::Terminal;
        desk_ = std::make_unique<desk::Desk>(terminal_, platform::Settings());
        desk_->show();
        desk_->activateWindow();
        terminal_->setFocus();
        return *desk_;
    }

    test::TestDevice device_;
    ui::Terminal* terminal_ = nullptr;
    std::unique_ptr<desk::Desk> desk_;
};

TEST_F(DeskTest, KeepsSlipsWhileThePrinterIsOutOfOrder) {
    desk::Desk* at = &open();
    const auto box = [&at](const QString& name) { return at->findChild<QCheckBox*>(name); };
    const auto* lamp = at->findChild<desk::Lamp*>(u"printer"_s);
    printByOrdinal(u" 하나\n");
    box(u"no-paper"_s)->click();
    printByOrdinal(u" 둘\n");
    box(u"printer-gone"_s)->click();
    printByOrdinal(u"셋\n");
    box(u"no-paper"_s)->click();
    EXPECT_EQ(lamp->light(), desk::Lamp::Red) << "it is still switched off";
    EXPECT_TRUE(lamp->accessibleName().contains(u"대기 2"_s)) << lamp->accessibleName().toStdString();
    EXPECT_EQ(test::rollText(), u"  【하나】\n"_s);
    box(u"printer-gone"_s)->click();
    EXPECT_EQ(lamp->light(), desk::Lamp::Green);
    EXPECT_EQ(test::rollText(), u"  【하나】\n  【둘】\n【셋】\n"_s);

    // What waits in the folder was left by a program that was killed: it comes out first.
    box(u"no-paper"_s)->click();
    printByOrdinal(u"넷\n");
    const QString spool = device_.folder() + u"/desk-spool"_s;
    const QString aside = device_.folder() + u"/aside"_s;
    ASSERT_TRUE(QDir().rename(spool, aside));
    desk_.reset();
    QDir(spool).removeRecursively();
    ASSERT_TRUE(QDir().rename(aside, spool));
    open();
    printByOrdinal(u"다섯\n");
    EXPECT_TRUE(test::rollText().endsWith(u"【셋】\n【넷】\n【다섯】\n"_s)) << test::rollText().toStdString();

    // What the roll does not take is tried again by itself.
    desk_.reset();
    test::resetRoll();
    const QString roll = device_.folder() + u"/roll.txt"_s;
    ASSERT_TRUE(QDir().mkdir(roll));
    desk::DeskPrinter printer(1 << 20, 20);
    printer.open();
    printer.print(u"여섯\n");
    printer.close();
    EXPECT_EQ(printer.status().waitingJobs, 1);
    ASSERT_TRUE(QDir().rmdir(roll));
    EXPECT_TRUE(QTest::qWaitFor([] { return test::rollText() == u"여섯\n"; }));
}

TEST_F(DeskTest, DrawsCardsThroughTheReader) {
    open();
    QStringList numbers;
    CardReader& reader = CardReader::instance();
    reader.setReceiver([&](int) {
        QByteArray track(kTrackBufferBytes, '\0');
        reader.readTrack(2, track.data());
        numbers << QString::fromLatin1(track.mid(1, 16));
    });
    const auto card = [this](const QString& name) { return desk_->findChild<desk::Card*>(name); };
    const auto isRead = [&](qsizetype count) {
        return QTest::qWaitFor([&] { return numbers.size() == count; });
    };
    QTest::mouseClick(card(u"good"_s), Qt::LeftButton);
    QTest::qWait(0);
    EXPECT_EQ(numbers, QStringList()) << "the reader takes no card yet";

    reader.open();
    reader.enable(true);
    QTest::mouseClick(card(u"good"_s), Qt::LeftButton);
    EXPECT_TRUE(isRead(1));
    EXPECT_TRUE(terminal_->hasFocus()) << "the pointer takes no keys away from the terminal";

    // Carried across the slot; put back before it, nothing is read.
    const auto carry = [&](QWidget* from, QPoint by) {
        const QPoint grip = from->rect().center();
        QTest::mousePress(from, Qt::LeftButton, {}, grip);
        for (const QPoint at : {grip + by / 2, grip + by, grip}) {
            QMouseEvent move(QEvent::MouseMove, at, from->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
            QApplication::sendEvent(from, &move);
        }
        QTest::mouseRelease(from, Qt::LeftButton, {}, grip);
    };
    carry(card(u"poor"_s), {0, -12});
    carry(card(u"second"_s), {0, -60});
    EXPECT_TRUE(isRead(2));

    // By keys: F6 leaves the terminal, Tab goes round the desk, Esc returns.
    QTest::keyClick(terminal_, Qt::Key_F6);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !terminal_->hasFocus(); }));
    for (int i = 0; i < 20 && QApplication::focusWidget() != card(u"unknown"_s); ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    ASSERT_EQ(QApplication::focusWidget(), card(u"unknown"_s));
    QTest::keyClick(card(u"unknown"_s), Qt::Key_Return);
    EXPECT_TRUE(isRead(3));
    QTest::keyClick(card(u"unknown"_s), Qt::Key_Escape);
    EXPECT_TRUE(terminal_->hasFocus());

    EXPECT_EQ(numbers, QStringList({u"9409110000000001"_s, u"9409110000000002"_s, u"9409110000000009"_s}));
    reader.setReceiver({});
    reader.close();
}

}  // namespace
