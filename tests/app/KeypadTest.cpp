#include "app/Keypad.h"

#include <gtest/gtest.h>

#include "support/PrintQt.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using app::Keypad;
using app::KeypadRequest;

/// Presses keys named by one character each: digits, "-", "<" erases field 1.
void press(Keypad* keypad, QStringView keys) {
    for (const QChar key : keys) {
        if (key == u'-') {
            keypad->minus();
        } else if (key == u'<') {
            keypad->erase(1);
        } else {
            keypad->append(QString(key));
        }
    }
}

TEST(Keypad, ShowsAndReturnsWhatIsKeyed) {
    const struct {
        int mode;
        QString keys, display, value;
        int result;
    } cases[] = {
        {app::kTextField, u"0042"_s, u"0042"_s, u"0042"_s, 1},
        {app::kTextField, u"12--"_s, u"--12"_s, u"--12"_s, 1},
        // Erasing shows a grouped number in the text mode as well.
        {app::kTextField, u"12345<"_s, u"1,234"_s, u"1234"_s, 1},
        {app::kOneNumber, u"1234567"_s, u"1,234,567"_s, u"1234567"_s, 1},
        {app::kOneNumber, u"007"_s, u"7"_s, u"007"_s, 1},
        // The sign counts as a character of the grouping.
        {app::kOneNumber, u"123456-"_s, u"-,123,456"_s, u"-123456"_s, 1},
        {app::kOneNumber, u""_s, u""_s, u""_s, 0},
        // Erasing an empty field shows "0", which counts as an entry.
        {app::kOneNumber, u"<"_s, u"0"_s, u""_s, 1},
        {app::kOneNumber, u"99999999999999999999"_s, u"9,223,372,036,854,775,807"_s,
         u"99999999999999999999"_s, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.keys.toStdString());
        KeypadRequest answer;
        answer.KeypadMode = c.mode;
        Keypad keypad(answer);
        press(&keypad, c.keys);
        EXPECT_EQ(keypad.display(1), c.display);
        keypad.accept(&answer);
        EXPECT_EQ(answer.KeypadValue1, c.value);
        EXPECT_EQ(answer.KeypadResult, c.result);
    }
}

}  // namespace
