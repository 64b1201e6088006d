#include "books/SlipNumbers.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/TestDevice.h"

namespace sales {
namespace {

constexpr QStringView kToday = u"2024-05-07";

TEST(SlipNumber, FollowsTheHighestOfItsTableAndDay) {
    constexpr int kSales = 1, kCollection = 2, kContainer = 3, kSimple = 4;
    const struct {
        int workMode;
        std::vector<QStringView> taken;
        QStringView next;
    } kCases[] = {
        {kSales, {}, u"5001"},
        {kSales, {u"5001", u"5003", u"5002"}, u"5004"},
        {kSales, {u"4998"}, u"5001"},
        {kSales, {u"4999"}, u"5000"},
        // The upper bound excludes nothing.
        {kSales, {u"5499"}, u"5500"},
        {kSales, {u"9999"}, u"10000"},
        // The highest text counts, so "10000" is given out again.
        {kSales, {u"9999", u"10000"}, u"10000"},
        {kSales, {u"99999999999999999999"}, u"9223372036854775807"},
        {kCollection, {}, u"7001"},
        {kCollection, {u"5001"}, u"7001"},
        {kCollection, {u"6999"}, u"7000"},
        {kCollection, {u"7001", u"5004"}, u"7002"},
        {kSimple, {}, u"7001"},
        {kSimple, {u"0150"}, u"7001"},
        {kSimple, {u"6998"}, u"7001"},
        {kSimple, {u"6999"}, u"7000"},
        {kSimple, {u"7005"}, u"7006"},
        {kSimple, {u"text"}, u"7001"},
        {kContainer, {}, u"6001"},
        {kContainer, {u"5999"}, u"6000"},
    };
    constexpr QStringView kTables[] = {u"", u"MTM", u"MTMOK", u"YTM", u"MTMOK"};
    test::TestDevice device;
    for (const auto& c : kCases) {
        for (int table = 1; table <= 3; ++table) {
            device.execute(QStringLiteral("DELETE FROM ") + kTables[table].toString());
            // Other days and other tables number for themselves.
            device.insert(kTables[table], {{u"DDate", u"2024-05-06"}, {u"JunNo", u"8888"}});
            if (kTables[table] != kTables[c.workMode])
                device.insert(kTables[table], {{u"DDate", kToday}, {u"JunNo", u"8888"}});
        }
        for (const QStringView junNo : c.taken) {
            device.insert(kTables[c.workMode], {{u"DDate", kToday}, {u"JunNo", junNo}});
        }
        EXPECT_EQ(c.workMode == kSimple ? books::nextSimplePaymentNumber(kToday)
                                        : books::nextSlipNumber(c.workMode, kToday),
                  c.next.toString())
            << "mode " << c.workMode;
    }
}

}  // namespace
}  // namespace sales
