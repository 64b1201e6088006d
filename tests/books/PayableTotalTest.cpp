#include "books/PayableTotal.h"

#include <gtest/gtest.h>

#include <QString>

namespace {

using platform::Won;

TEST(PayableTotal, FollowsTheRoundingMode) {
    struct Case {
        const char16_t* mode;
        std::int64_t supply;
        std::int64_t vat;
        std::int64_t total;
    };
    const Case cases[] = {
        {u"3", 10045, 1005, 11000},  // 11049.5: remainder 49
        {u"3", 10046, 1005, 11100},  // 11050.6: remainder 50
        {u"2", 1004, 100, 1100},     // 1104.4: remainder 4
        {u"2", 1005, 101, 1110},     // 1105.5: remainder 5 goes up
        {u"2", 1005, 999, 1110},     // the tax sum plays no part
        {u"2", 10, 1, 10},           // 10 × 1.1 is a little over 11: remainder 1
        {u"2", -1004, -100, -1100},
        {u"2", -1005, -101, -1100},  // a negative remainder is below 5: towards
                                     // zero
        {u"1", 1005, 101, 1106},
        {u"2", INT64_MAX, 0, INT64_MAX},
        {u"3", INT64_MIN, 0, INT64_MIN},
    };
    for (const Case& entry : cases) {
        const Won vat = books::payableVat(Won(entry.supply), Won(entry.vat), QStringView(entry.mode));
        EXPECT_EQ(vat, Won(entry.total) - Won(entry.supply)) << "the parts add up to the total";
        EXPECT_EQ(books::payableTotal(Won(entry.supply), Won(entry.vat), QStringView(entry.mode)).value(),
                  entry.total)
            << "mode " << QString::fromUtf16(entry.mode).toStdString() << ", supply " << entry.supply;
    }
}

}  // namespace
