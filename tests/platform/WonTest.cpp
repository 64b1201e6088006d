#include "platform/Won.h"

#include <gtest/gtest.h>

#include "support/PrintQt.h"

namespace platform {
namespace {

TEST(WonTest, ReadsLikeTheDecimalConversion) {
    // A full-width digit is no digit.
    const std::pair<QStringView, std::int64_t> cases[] = {{u"", 0},
                                                          {u"-", 0},
                                                          {u"12500", 12500},
                                                          {u"  \t42", 42},
                                                          {u"12,500", 12},
                                                          {u"3병", 3},
                                                          {u"９", 0},
                                                          {u"9223372036854775808", INT64_MAX},
                                                          {u"-9223372036854775809", INT64_MIN}};
    for (const auto& [text, number] : cases) {
        EXPECT_EQ(parseInteger(text), number) << text.toString().toStdString();
        EXPECT_EQ(parseWon(text), Won(number));
    }
}

TEST(WonTest, WritesAndGroups) {
    struct Case {
        std::int64_t won;
        const char16_t* plain;
        const char16_t* grouped;
    };
    for (const Case& c : {Case{1234567, u"1234567", u"1,234,567"},
                          {-100, u"-100", u"-,100"},
                          {-1000, u"-1000", u"-1,000"},
                          {-100000, u"-100000", u"-,100,000"},
                          {INT64_MIN, u"-9223372036854775808", u"-9,223,372,036,854,775,808"}}) {
        EXPECT_EQ(formatWon(Won(c.won)), c.plain);
        EXPECT_EQ(groupThousands(Won(c.won)), c.grouped);
    }
}

TEST(WonTest, SaturatesAtTheLimits) {
    const Won most(INT64_MAX);
    const Won least(INT64_MIN);
    EXPECT_EQ(most + Won(1), most);
    EXPECT_EQ(most - Won(-1), most);
    EXPECT_EQ(-least, most);
    EXPECT_EQ(2 * most, most);
    EXPECT_EQ(-2 * most, least);
}

}  // namespace
}  // namespace platform
