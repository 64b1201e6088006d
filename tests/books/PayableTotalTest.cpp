#include "books/PayableTotal.h"

#include <gtest/gtest.h>

#include <QString>

namespace {

using platform::Won;

TEST(PayableTotal, FollowsTheRoundingMode) {
    const struct {
        QStringView mode;
        std::int64_t supply, vat, total;
    } cases[] = {
        {u"3", 10045, 1005, 11000},  // 11049.5: remainder 49
        {u"3", 10046, 1005, 11100},  // 11050.6: remainder 50
        {u"2", 1004, 100, 1100},     // 1104.4: remainder 4
        {u"2", 1005, 101, 1110},     // 1105.5: remainder 5 goes up
        {u"2", 1005, 999, 1110},     // the tax sum plays no part
        {u"2", 10, 1, 10},           // 10 × 1.1 is a little over 11: remainder 1
        {u"2", -1005, -101, -1100},  // a negative remainder: towards zero
        {u"1", 1005, 101, 1106},     // as it is
        {u"2", INT64_MAX, 0, INT64_MAX},
        {u"3", INT64_MIN, 0, INT64_MIN},
    };
    for (const auto& [mode, supply, vat, total] : cases) {
        EXPECT_EQ(books::payableVat(Won(supply), Won(vat), mode), Won(total) - Won(supply))
            << "the parts add up";
        EXPECT_EQ(books::payableTotal(Won(supply), Won(vat), mode).value(), total)
            << "mode " << mode.toUtf8().toStdString() << ", supply " << supply;
    }
}

}  // namespace
