#include "rovana-play/Script.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::Literals::StringLiterals;
using pilot::Address;
using pilot::Command;
using pilot::Script;
using pilot::Step;

TEST(Script, ReadsEveryCommand) {
    struct Case {
        QString line;
        Command command;
        Address at;
        QList<int> numbers;
        QStringList texts;
    };
    const Case cases[] = {
        {u"press 102.1000"_s, Command::Press, {102, 1000}, {}, {}},
        {u"  press\t102.1000  "_s, Command::Press, {102, 1000}, {}, {}},
        {u"patience 30"_s, Command::Patience, {}, {30}, {}},
        {u"type 143.1005 참이슬 후레쉬 "_s, Command::Type, {143, 1005}, {}, {u"참이슬 후레쉬"_s}},
        {uR"(type 143.1005 " 두  칸 ")"_s, Command::Type, {143, 1005}, {}, {u" 두  칸 "_s}},
        {u"type 143.1005 \"\""_s, Command::Type, {143, 1005}, {}, {u""_s}},
        {u"row 132.1021 3"_s, Command::Row, {132, 1021}, {3}, {}},
        {u"row 132.1021 =0001"_s, Command::Row, {132, 1021}, {0}, {u"0001"_s}},
        {uR"(row2 132.1021 ="a b ")"_s, Command::DoubleRow, {132, 1021}, {0}, {u"a b "_s}},
        {u"answer yes"_s, Command::Answer, {}, {1}, {}},
        {u"answer ok"_s, Command::Answer, {}, {1}, {}},
        {u"answer no"_s, Command::Answer, {}, {0}, {}},
        {u"answer cancel"_s, Command::Answer, {}, {0}, {}},
        {u"key Enter"_s, Command::Key, {}, {Qt::Key_Return}, {}},
        {u"key 5"_s, Command::Key, {}, {Qt::Key_5}, {}},
        {u"key a"_s, Command::Key, {}, {Qt::Key_A}, {}},
        {uR"(expect message 한 줄\n"그대로")"_s, Command::ExpectMessage, {}, {}, {uR"(한 줄\n"그대로")"_s}},
        {uR"(expect message "두\n줄 \"인용\" \\")"_s,
         Command::ExpectMessage,
         {},
         {},
         {u"두\n줄 \"인용\" \\"_s}},
        {u"expect caption 저장"_s, Command::ExpectCaption, {}, {}, {u"저장"_s}},
        {u"expect screen 130"_s, Command::ExpectScreen, {}, {130}, {}},
        {u"expect 130.1114 12,000"_s, Command::ExpectText, {130, 1114}, {}, {u"12,000"_s}},
        {u"expect rows 132.1021 0"_s, Command::ExpectRows, {132, 1021}, {0}, {}},
        {u"expect cell 132.1021 2 5 12,000 원"_s, Command::ExpectCell, {132, 1021}, {2, 5}, {u"12,000 원"_s}},
        {u"expect hidden 102.1046"_s, Command::ExpectHidden, {102, 1046}, {}, {}},
        {u"expect unchecked 130.1089"_s, Command::ExpectUnchecked, {130, 1089}, {}, {}},
        {uR"(expect sql "SELECT 'a b'" a b)"_s, Command::ExpectSql, {}, {}, {u"SELECT 'a b'"_s, u"a b"_s}},
        {u"expect roll sale.roll.txt"_s, Command::ExpectRoll, {}, {}, {u"sale.roll.txt"_s}},
        {u"tear"_s, Command::Tear, {}, {}, {}},
        {u"host \"\""_s, Command::Host, {}, {}, {u""_s}},
        {u"host \"--fault late 2@1\""_s, Command::Host, {}, {}, {u"--fault late 2@1"_s}},
        {u"swipe good"_s, Command::Swipe, {}, {}, {u"good"_s}},
        {u"timeout 20"_s, Command::TimeOut, {}, {20}, {}},
        {u"remove Flash Disk/a.pub"_s, Command::Remove, {}, {}, {u"Flash Disk/a.pub"_s}},
        {u"shot 01-메뉴"_s, Command::Shot, {}, {}, {u"01-메뉴"_s}},
        {u"quit"_s, Command::Quit, {}, {}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line.toStdString());
        const Script script = pilot::parseScript(c.line);
        ASSERT_TRUE(script.errors.isEmpty()) << script.errors.first().toStdString();
        ASSERT_EQ(script.steps.size(), 1);
        const Step& step = script.steps.first();
        EXPECT_EQ(step.command, c.command);
        EXPECT_EQ(step.at, c.at);
        EXPECT_EQ(step.numbers, c.numbers);
        EXPECT_EQ(step.texts, c.texts);
        EXPECT_EQ(step.source, c.line.trimmed());
    }
}

TEST(Script, SplitsKeypadKeysIntoSteps) {
    const Script script = pilot::parseScript(u"keys 120 next 00 -7 again erase ok"_s);
    ASSERT_TRUE(script.errors.isEmpty());
    QList<int> controls;
    for (const Step& step : script.steps) {
        EXPECT_EQ(step.at.dialog, 130);
        EXPECT_EQ(step.command, step.at.control == 0 ? Command::KeypadNext : Command::KeypadKey);
        controls << step.at.control;
    }
    EXPECT_EQ(controls, (QList{1029, 1030, 1038, 0, 1040, 1001, 1035, 1002, 1011, 1000}));
}

TEST(Script, ReadsTheClock) {
    const struct {
        QString line;
        QDateTime moment;
    } cases[] = {{u"clock 2026-11-21 09:05"_s, {{2026, 11, 21}, {9, 5}}},
                 {u"clock 2026-11-21 23:59:58"_s, {{2026, 11, 21}, {23, 59, 58}}}};
    for (const auto& c : cases) {
        const Script script = pilot::parseScript(c.line);
        ASSERT_EQ(script.steps.size(), 1);
        EXPECT_EQ(script.steps.first().moment, c.moment);
    }
}

TEST(Script, NamesTheLineAndTheFault) {
    const struct {
        QString line;
        QString fault;
    } cases[] = {
        {u"pres 102.1000"_s, u"unknown command: pres"_s},
        {u"expect nothing 102.1"_s, u"unknown command: expect nothing"_s},
        {u"press"_s, u"something is missing"_s},
        {u"press 102"_s, u"no address of the form DIALOG.CONTROL: 102"_s},
        {u"press 102.x"_s, u"no address of the form DIALOG.CONTROL: 102.x"_s},
        {u"press 102.+5"_s, u"no address of the form DIALOG.CONTROL: 102.+5"_s},
        {u"press 102.1000 twice"_s, u"too much: twice"_s},
        {u"type 102.1000"_s, u"a text is missing"_s},
        {u"type 102.1000 \"offen"_s, u"the quoted text has no end"_s},
        {u"type 102.1000 \"a\" b"_s, u"something follows the quoted text"_s},
        {uR"(type 102.1000 "a\tb")"_s, u"a backslash in quotes"_s},
        {u"row 132.1021 0"_s, u"no number from 1 on: 0"_s},
        {u"row 132.1021 ="_s, u"a text is missing"_s},
        {u"expect cell 132.1021 1 x 5"_s, u"no number from 1 on: x"_s},
        {u"expect rows 132.1021 -1"_s, u"no number from 0 on: -1"_s},
        {u"expect sql \"SELECT 1\""_s, u"a text is missing"_s},
        {u"answer maybe"_s, u"no answer: maybe"_s},
        {u"key Ctrl"_s, u"no key: Ctrl"_s},
        {u"keys"_s, u"something is missing"_s},
        {u"keys 12x"_s, u"the keypad has no key for: 12x"_s},
        {u"clock 2026-02-30 09:05"_s, u"no date and time: 2026-02-30 09:05"_s},
        {u"clock 2026-11-21"_s, u"no date and time"_s},
        {u"shot ../a"_s, u"no name for a file: ../a"_s},
        {u"quit\npress 102.1000"_s, u"nothing can follow"_s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line.toStdString());
        const Script script =
            pilot::parseScript(u"# a comment\n\npress 102.1\n"_s + c.line + u"\npress 102.2"_s);
        ASSERT_FALSE(script.errors.isEmpty());
        const int line = c.line.startsWith(u"quit") ? 5 : 4;
        EXPECT_TRUE(script.errors.first().startsWith(u"line %1: %2"_s.arg(line).arg(c.fault)))
            << script.errors.first().toStdString();
    }
}

TEST(Script, CollectsAllErrorsOfAFile) {
    const Script script = pilot::parseScript(u"press\r\npress 102.1000\r\nanswer\r\n"_s);
    EXPECT_EQ(script.errors.size(), 2);
    EXPECT_EQ(script.steps.size(), 1);
    EXPECT_TRUE(pilot::readScript(u"/nowhere/a.visit"_s).errors.value(0).startsWith(u"cannot be read"));
}

}  // namespace
