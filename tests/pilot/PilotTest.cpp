#include "rovana-play/Pilot.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>

#include "support/PrintQt.h"
#include "ui/BitmapButton.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// A dialog with one of everything.
class TestScreen : public ui::Screen {
  public:
    TestScreen() : Screen(900) {
        button(1, {4, 4});
        button(2, {60, 4})->hide();
        button(3, {116, 4})->setEnabled(false);
        button(4, {172, 4});
        addLabel(0, u"on top"_s, {172, 4, 60, 60});
        button(5, {300, 4});
        button(6, {4, 50}, [] { ui::confirm(u"저장할까요?\n정말"_s, u"저장"_s); });
        addLabel(10, u"  두 칸"_s, {4, 96, 100, 20});
        place(11, new QLineEdit(this), {4, 120, 100, 24})->setMaxLength(5);
        place(12, new QLineEdit(this), {110, 120, 100, 24})->setEchoMode(QLineEdit::Password);
        addList(20, {60, 204, 176, 110}, u"가게"_s, {{u"번호"_s, 60}, {u"이름"_s, 100}}, {})
            ->setRows({2, {u"1"_s, u"가게 1"_s, u"2"_s, u"가게 2"_s}});
    }

  private:
    ui::BitmapButton* button(
        int id, QPoint at, const std::function<void()>& clicked = [] {}) {
        return addButton(id, u"단추 %1"_s.arg(id), at, ui::bitmaps::kConfirm, clicked);
    }
};

class PilotTest : public testing::Test {
  protected:
    PilotTest() { terminal.setVisible(true); }

    /// What the first missed step of a script says it found.
    QString missedBy(const QString& text) {
        TestScreen screen;
        const pilot::Script script = pilot::parseScript(text);
        EXPECT_TRUE(script.errors.isEmpty()) << script.errors.join(u'\n').toStdString();
        pilot::Options options;
        options.patienceMs = 60;
        pilot::Pilot player(script, options);
        player.start();
        screen.run();
        EXPECT_FALSE(player.finish());
        EXPECT_EQ(terminal.top(), nullptr);
        return player.failure().section(u"\n    "_s, 1);
    }

    ui::Terminal terminal;
};

TEST_F(PilotTest, MissesWhatAFingerCannotTouchAndWhatIsNotThere) {
    const struct {
        QString script;
        QString reason;
    } cases[] = {
        {u"press 900.2"_s, u"900.2 is hidden"_s},
        {u"press 900.3"_s, u"900.3 is disabled"_s},
        {u"press 900.4"_s, u"900.4 is covered by QLabel"_s},
        {u"press 900.5"_s, u"900.5 is outside the terminal, at 3"_s},
        {u"press 777.1"_s, u"dialog 777 is not open: dialog 900 is in front"_s},
        {u"press 900.6\npress 900.1"_s, u"900.1 is behind: the message \"저장할까요?\\n정말\" is open"_s},
        {u"type 900.11 123456"_s, u"the control took \"12345\""_s},
        {u"row 900.20 =3"_s, u"none of 2 rows holds \"3\""_s},
        {u"answer ok"_s, u"no message is open: dialog 900 is in front"_s},
        {u"expect 900.10 두 칸"_s, u"found \"  두 칸\""_s},
        {u"press 900.6\nexpect message 저장할까요?"_s, u"found \"저장할까요?\\n정말\""_s},
        {u"expect rows 900.20 3"_s, u"found 2 rows"_s},
        {u"expect cell 900.20 2 2 가게 1"_s, u"found \"가게 2\""_s},
        // What is typed into a password never comes to light.
        {u"type 900.12 1234\nexpect 900.12 1234"_s, u"found \"●●●●\""_s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script.toStdString());
        const QString reason = missedBy(c.script);
        EXPECT_TRUE(reason.startsWith(c.reason)) << reason.toStdString();
    }
}

}  // namespace
