#include "platform/Hangul.h"

#include <gtest/gtest.h>

#include "support/PrintQt.h"

namespace platform::hangul {
namespace {

TEST(Hangul, FindsNamesByWhatIsTypedOfThem) {
    const struct {
        QStringView name, typed;
        bool anywhere, fromTheStart, continued;
    } kCases[] = {
        {u"강나루마트", u"ㄱㄴ", true, true, true},
        {u"강나루마트", u"ㄴㄹ", true, false, true},
        {u"강나루마트", u"나루", true, false, true},
        {u"강나루마트", u"강ㄴ루", true, true, true},
        {u"강나루마트", u"ㄴㄱ", false, false, false},
        {u"까치 가든", u"ㄱㅊㄱ", true, true, true},  // a plain consonant finds its tense one
        {u"까치 가든", u"ㄲ", true, true, true},
        {u"가치", u"ㄲ", false, false, false},  // but not the other way round
        {u"힣가", u"ㅎㄱ", true, true, true},   // the last syllable and the first
        {u"BAR 7080", u"bar7", true, true, true},
        {u"BAR 7080", u"ㅂ", false, false, false},
        {u"가", u" ", true, true, true},
        {u"", u"ㄱ", false, false, false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name.toString().toStdString() + " " + c.typed.toString().toStdString());
        EXPECT_EQ(matches(c.name, c.typed), c.anywhere);
        EXPECT_EQ(matchesAt(c.name, c.typed, 0), c.fromTheStart);
        EXPECT_EQ(continues(c.name, c.typed), c.continued);
    }
}

}  // namespace
}  // namespace platform::hangul
