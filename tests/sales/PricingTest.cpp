#include "sales/Pricing.h"

#include <gtest/gtest.h>

#include <QString>

#include "PrintAmounts.h"
#include "books/PayableTotal.h"
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
        device.execute(
            uR"(
            INSERT INTO PUMMOK (Pcode, Pname, JGubun, BoxSMoney, BonSMoney, BoxBMoney, BonBMoney, ABoxMMoney, ABonMMoney,
                ABoxBMoney, ABonBMoney, BBoxMMoney, BBonMMoney, BBoxBMoney, BBonBMoney, YGMoney1, YGMoney2, GBoxMoney1,
                GBonMoney1, GBoxMoney2, GBonMoney2)
                VALUES ('0001', '소주', '10', '1001', '51', '707', '100', '2000', '210', '200', '21', '3000', '310',
                    '300', '31', '11', '13', '90001', '90002', '90003', '17'),
                    ('0002', '', '20', '', '', '', '', '', '', '', '', '', '', '', '', '', '', '', '', '', '');
            INSERT INTO GARAE (GCODE, MAJIN)
                VALUES ('K', '30'), ('C', '30'), ('Z', '30'), ('M', '15'), ('A', ''), ('B', '0');
            INSERT INTO GARAEMAJIN VALUES ('K', '10', '10'), ('C', '10', '10'), ('Z', '10', '0');
            INSERT INTO GARAEDANGA VALUES ('K', '0001', '99', '5000', '500', '251', '25', '7', '9', '3'))"_s);
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
        const char16_t* origin = u"";
    } kCases[] = {
        {"contract before all margins", u"K", u"일반", u"0001", 2, 3, PriceSource::Contract,
         won(10753, 1075, 14, 27),
         u"계약단가\n상자 2 × 5,000 (세 500)\n본 3 × 251 (세 25)\n공급가 10,753\n부가세 1,075\n용기 14, 공병 "
         u"27"},
        {"contract, bottles only", u"K", u"일반", u"0001", 0, 3, PriceSource::Contract, won(753, 75, 0, 9)},
        // VAT of boxes from the bottle column: ceil(2 * 110) whatever BoxBMoney holds.
        {"class margin", u"C", u"일반", u"0001", 2, 0, PriceSource::ClassMargin, won(2203, 220, 22, 26),
         u"주류구분마진 : 원가 + 10%\n상자 2 × 1,001 (세 100)\n"},
        {"class margin, both", u"C", u"일반", u"0001", 1, 3, PriceSource::ClassMargin,
         won(1102 + 169, 110 + 330, 11, 13 + 51)},
        {"class margin of 0 is one", u"Z", u"일반", u"0001", 1, 1, PriceSource::ClassMargin,
         won(1052, 200, 11, 30)},
        {"no contract for this product", u"K", u"일반", u"0002", 1, 1, PriceSource::CustomerMargin,
         won(0, 0, 0, 0)},
        // ceil(1151.15) + ceil(58.65); VAT of boxes from its own column: ceil(813.05) + 115.
        {"customer margin", u"M", u"일반", u"0001", 1, 1, PriceSource::CustomerMargin,
         won(1152 + 59, 814 + 115, 11, 30), u"거래처마진 : 원가 + 15%\n상자 1 × 1,001 (세 707)\n"},
        {"margin empty, tier A", u"A", u"일반", u"0001", 2, 3, PriceSource::Tier, won(4630, 463, 22, 77),
         u"판매단가 A\n상자 2 × 2,000 (세 200)\n본 3 × 210 (세 21)\n"},
        {"margin 0, tier B", u"B", u"유흥", u"0001", 2, 3, PriceSource::Tier, won(6930, 693, 22, 77),
         u"판매단가 B\n"},
        {"no kind is tier B", u"A", u"", u"0001", 0, 1, PriceSource::Tier, won(310, 31, 0, 17)},
        {"unknown customer", u"X", u"일반", u"0001", 1, 0, PriceSource::Tier, won(2000, 200, 11, 13)},
        {"unknown product", u"M", u"일반", u"9999", 5, 5, PriceSource::CustomerMargin, won(0, 0, 0, 0)},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        const PricedLine line = priceLine(c.gcode, c.kind, c.pcode, c.boxes, c.bottles);
        EXPECT_EQ(line.source, c.source);
        EXPECT_EQ(line.amounts, c.amounts);
        const QString origin = priceOrigin(line, c.boxes, c.bottles);
        EXPECT_TRUE(origin.startsWith(c.origin)) << origin.toStdString();
    }
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
    EXPECT_EQ(books::payableTotal(kMost, Won(), u"2"), kMost);
    EXPECT_EQ(books::payableTotal(Won(INT64_MIN), Won(), u"3"), Won(INT64_MIN));
    const ContractPrices contract{kMost, kMost, kMost, kMost, kMost, kMost, kMost};
    EXPECT_EQ(contractAmounts(contract, 999, 999).total(), kMost);
    EXPECT_EQ(contractAmounts(contract, -999, 0).supply, Won(INT64_MIN));
}

}  // namespace
}  // namespace sales
