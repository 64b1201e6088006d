#include "sales/Pricing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QString>

#include "PrintAmounts.h"
#include "sales/PriceOrigin.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

namespace {

/// Product 0001 of class 10 has another figure in every price column, so that a column mistaken for another
/// shows. Customers: K has a contract besides all margins, C a class margin, Z a class margin of 0, M a
/// general margin of 15, A and B only a kind.
class PricingTest : public testing::Test {
  protected:
    PricingTest() {
        device.insert(u"PUMMOK",
                      {{u"Pcode", u"0001"},       {u"Pname", u"소주"},       {u"JGubun", u"10"},
                       {u"BoxSMoney", u"1001"},   {u"BonSMoney", u"51"},     {u"BoxBMoney", u"707"},
                       {u"BonBMoney", u"100"},    {u"ABoxMMoney", u"2000"},  {u"ABonMMoney", u"210"},
                       {u"ABoxBMoney", u"200"},   {u"ABonBMoney", u"21"},    {u"BBoxMMoney", u"3000"},
                       {u"BBonMMoney", u"310"},   {u"BBoxBMoney", u"300"},   {u"BBonBMoney", u"31"},
                       {u"YGMoney1", u"11"},      {u"YGMoney2", u"13"},      {u"GBoxMoney1", u"90001"},
                       {u"GBonMoney1", u"90002"}, {u"GBoxMoney2", u"90003"}, {u"GBonMoney2", u"17"}});
        device.insert(u"PUMMOK", {{u"Pcode", u"0002"}, {u"JGubun", u"20"}});
        customer(u"K", u"30");
        customer(u"C", u"30");
        customer(u"Z", u"30");
        customer(u"M", u"15");
        customer(u"A", u"");
        customer(u"B", u"0");
        for (const QStringView gcode : {u"K", u"C"}) classMargin(gcode, u"10");
        classMargin(u"Z", u"0");
        device.insert(u"GARAEDANGA", {{u"gcode", u"K"},
                                      {u"pcode", u"0001"},
                                      {u"majin", u"99"},
                                      {u"boxmoney", u"5000"},
                                      {u"boxbmoney", u"500"},
                                      {u"bonmoney", u"251"},
                                      {u"bonbmoney", u"25"},
                                      {u"ysmoney", u"7"},
                                      {u"ysboxmoney", u"9"},
                                      {u"ysbonmoney", u"3"}});
    }

    void customer(QStringView gcode, QStringView margin) {
        device.insert(u"GARAE", {{u"GCODE", gcode}, {u"MAJIN", margin}});
    }
    void classMargin(QStringView gcode, QStringView margin) {
        device.insert(u"GARAEMAJIN", {{u"GCode", gcode}, {u"Gubun", u"10"}, {u"Majin", margin}});
    }

    test::TestDevice device;
};

TEST_F(PricingTest, UsesTheFirstSourceThatApplies) {
    const struct {
        const char* what;
        QStringView gcode, kind, pcode;
        std::int64_t boxes, bottles;
        PriceSource source;
        LineAmounts amounts;
    } kCases[] = {
        {"contract before all margins", u"K", u"일반", u"0001", 2, 3, PriceSource::Contract,
         won(10753, 1075, 14, 27)},
        {"contract, bottles only", u"K", u"일반", u"0001", 0, 3, PriceSource::Contract, won(753, 75, 0, 9)},
        // VAT of boxes from the bottle column: ceil(2 * 110) whatever BoxBMoney holds.
        {"class margin", u"C", u"일반", u"0001", 2, 0, PriceSource::ClassMargin, won(2203, 220, 22, 26)},
        {"class margin, both", u"C", u"일반", u"0001", 1, 3, PriceSource::ClassMargin,
         won(1102 + 169, 110 + 330, 11, 13 + 51)},
        {"class margin of 0 is one", u"Z", u"일반", u"0001", 1, 1, PriceSource::ClassMargin,
         won(1052, 200, 11, 30)},
        {"no contract for this product", u"K", u"일반", u"0002", 1, 1, PriceSource::CustomerMargin,
         won(0, 0, 0, 0)},
        // ceil(1151.15) + ceil(58.65); VAT of boxes from its own column: ceil(813.05) + 115.
        {"customer margin", u"M", u"일반", u"0001", 1, 1, PriceSource::CustomerMargin,
         won(1152 + 59, 814 + 115, 11, 30)},
        {"margin empty, tier A", u"A", u"일반", u"0001", 2, 3, PriceSource::Tier, won(4630, 463, 22, 77)},
        {"margin 0, tier B", u"B", u"유흥", u"0001", 2, 3, PriceSource::Tier, won(6930, 693, 22, 77)},
        {"no kind is tier B", u"A", u"", u"0001", 0, 1, PriceSource::Tier, won(310, 31, 0, 17)},
        {"unknown customer", u"X", u"일반", u"0001", 1, 0, PriceSource::Tier, won(2000, 200, 11, 13)},
        {"unknown product", u"M", u"일반", u"9999", 5, 5, PriceSource::CustomerMargin, won(0, 0, 0, 0)},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        const PricedLine line = priceLine(c.gcode, c.kind, c.pcode, c.boxes, c.bottles);
        EXPECT_EQ(line.source, c.source);
        EXPECT_EQ(line.amounts, c.amounts);
    }
}

TEST_F(PricingTest, TellsTheTierThatMadeAPrice) {
    EXPECT_EQ(
        priceOrigin(priceLine(u"A", u"일반", u"0001", 2, 3), 2, 3),
        u"판매단가 A\n상자 2 × 2,000 (세 200)\n본 3 × 210 (세 21)\n공급가 4,630\n부가세 463\n용기 22, 공병 77"_s);
    EXPECT_THAT(priceOrigin(priceLine(u"A", u"유흥", u"0001", 2, 3), 2, 3).toStdString(),
                testing::HasSubstr(" B\n"));
}

TEST_F(PricingTest, TakesTextThatIsNoPriceAsZero) {
    device.execute(
        QStringLiteral("UPDATE PUMMOK SET ABoxMMoney = NULL, ABoxBMoney = '원', YGMoney1 = '12x'"));
    EXPECT_EQ(priceLine(u"A", u"일반", u"0001", 1, 0).amounts, won(0, 0, 12, 13));
}

TEST(MarginAmounts, RoundsEachPartUp) {
    const struct {
        double boxPrice, bottlePrice, percent;
        std::int64_t boxes, bottles, supply;
    } kCases[] = {
        {1001, 0, 15, 1, 0, 1152},          // 1151.15
        {1001, 101, 15, 1, 1, 1152 + 117},  // each part by itself: 1151.15 and 116.15
        {1001, 0, 15, 3, 0, 3454},          // the product is rounded, not the price: 3453.45
        {1001, 0, 15, -1, 0, -1151},        // up is towards zero
        {1150.5, 0, 0, 1, 0, 1151},         // a price with a fraction
    };
    for (const auto& c : kCases) {
        const UnitPrices prices{c.boxPrice, c.bottlePrice, c.boxPrice, c.bottlePrice, {}};
        const LineAmounts amounts = marginAmounts(prices, c.percent, c.boxes, c.bottles);
        EXPECT_EQ(amounts, won(c.supply, c.supply, 0, 0));
    }
}

TEST(Amounts, SaturateOnAbsurdFigures) {
    constexpr Won kMost(INT64_MAX);
    const UnitPrices prices{1e300, 1e300, -1e300, 1e300, {kMost, kMost, kMost}};
    const LineAmounts raised = marginAmounts(prices, 1e6, INT64_MAX, 0);
    EXPECT_EQ(raised, won(INT64_MAX, INT64_MIN, INT64_MAX, INT64_MAX));
    EXPECT_EQ(tierAmounts(prices, 999, 999).supply, kMost);
    const ContractPrices contract{kMost, kMost, kMost, kMost, kMost, kMost, kMost};
    EXPECT_EQ(contractAmounts(contract, 999, 999).total(), kMost);
    EXPECT_EQ(contractAmounts(contract, -999, 0).supply, Won(INT64_MIN));
}

}  // namespace
}  // namespace sales
