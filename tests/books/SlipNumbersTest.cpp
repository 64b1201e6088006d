#include "books/SlipNumbers.h"

#include <gtest/gtest.h>

#include "support/TestDevice.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QStringView kToday = u"2024-05-07";

TEST(SlipNumber, FollowsTheHighest) {
    constexpr int kSales = 1, kCollection = 2, kContainer = 3, kSimple = 4;
    const struct {
        int workMode;
        QStringView taken, next;
    } kCases[] = {
        {kSales, u"4998", u"5001"},
        {kSales, u"4999", u"5000"},
        // The upper bound excludes nothing.
        {kSales, u"5499", u"5500"},
        {kSales, u"99999999999999999999", u"9223372036854775807"},
        {kCollection, u"5001", u"7001"},
        {kCollection, u"6999", u"7000"},
        {kSimple, u"0150", u"7001"},
        {kSimple, u"6998", u"7001"},
        {kSimple, u"6999", u"7000"},
        {kSimple, u"text", u"7001"},
        {kContainer, u"5999", u"6000"},
    };
    constexpr QStringView kTables[] = {u"", u"MTM", u"MTMOK", u"YTM", u"MTMOK"};
    test::TestDevice device;
    for (const auto& c : kCases) {
        device.execute(QStringLiteral("DELETE FROM ") + kTables[c.workMode].toString());
        device.insert(kTables[c.workMode], {{u"DDate", kToday}, {u"JunNo", c.taken}});
        EXPECT_EQ(c.workMode == kSimple ? books::nextSimplePaymentNumber(kToday)
                                        : books::nextSlipNumber(c.workMode, kToday),
                  c.next.toString())
            << "mode " << c.workMode;
    }
    // A payment that may yet be found approved keeps its number.
    device.execute(
        u"DELETE FROM MTMOK; INSERT INTO PAYJOURNAL (Number, DDate, JunNo, State) VALUES "
        "('a', '2024-05-07', '7001', 'sent'), ('b', '2024-05-07', '7002', 'unknown'), "
        "('c', '2024-05-07', '7003', 'refused')"_s);
    EXPECT_EQ(books::nextSlipNumber(kCollection, kToday), u"7003"_s);
    EXPECT_EQ(books::nextSimplePaymentNumber(kToday), u"7003"_s);
}

}  // namespace
}  // namespace sales
