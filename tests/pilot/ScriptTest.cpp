#include "rovana-play/Script.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::Literals::StringLiterals;
using pilot::Script;

TEST(Script, NamesTheLineAndTheFault) {
    const struct {
        QString line;
        QString fault;
    } cases[] = {
        {u"pres 102.1000"_s, u"unknown command: pres"_s},
        {u"press 102.x"_s, u"no address of the form DIALOG.CONTROL: 102.x"_s},
        {u"press 102.1000 twice"_s, u"no address of the form DIALOG.CONTROL: twice"_s},
        {u"expect rows 102.1000 1 2"_s, u"too much: 2"_s},
        {u"expect texts 102 1000"_s, u"no CONTROL=TEXT: 1000"_s},
        {u"login A"_s, u"a text is missing"_s},
        {u"type 102.1000 \"offen"_s, u"the quoted text has no end"_s},
        {u"type 102.1000 \"a\" b"_s, u"something follows the quoted text"_s},
        {uR"(type 102.1000 "a\tb")"_s, u"a backslash in quotes"_s},
        {u"row 132.1021 0"_s, u"no number from 1 on: 0"_s},
        {u"expect rows 132.1021 -1"_s, u"no number from 0 on: -1"_s},
        {u"answer maybe"_s, u"no answer: maybe"_s},
        {u"keys 12x"_s, u"the keypad has no key for: 12x"_s},
        {u"clock 2026-02-30 09:05"_s, u"no date and time: 2026-02-30 09:05"_s},
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
}

}  // namespace
