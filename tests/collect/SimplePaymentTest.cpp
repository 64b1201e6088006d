#include "collect/SimplePayment.h"

#include <gtest/gtest.h>

#include <vector>

namespace collect {

using app::SettlementAmounts;
using platform::Won;

namespace {

TEST(SimplePayment, KeepsItsAmountsTogether) {
    using enum SimpleAmount;
    struct Step {
        SimpleAmount which;
        std::int64_t keyed;
        std::int64_t excess = 0;
    };
    const struct {
        const char* name;
        std::vector<Step> steps;
        std::int64_t sales, supply, vat, nonLiquor, recovery, total;
    } kCases[] = {
        {"supply and tax", {{Supply, 100000}, {Vat, 10000}}, 110000, 100000, 10000, 0, 0, 110000},
        {"sales", {{Sales, 9999}}, 9999, 9090, 909, 0, 0, 9999},
        {"sales over supply", {{Supply, 5}, {Sales, 1100}, {Vat, 7}}, 1007, 1000, 7, 0, 0, 1007},
        {"all", {{Sales, 1100}, {NonLiquor, 500}, {Recovery, 600}}, 1100, 1000, 100, 500, 600, 1000},
        {"recovery equal",
         {{Sales, 1100}, {NonLiquor, 500}, {Recovery, 1600}},
         1100,
         1000,
         100,
         500,
         1600,
         0},
        {"recovery above", {{Sales, 1100}, {Recovery, 1101, 1}}, 1100, 1000, 100, 0, 0, 1100},
        {"sales below it", {{Sales, 1100}, {Recovery, 900}, {Sales, 550, 350}}, 550, 500, 50, 0, 0, 550},
        {"back to nothing", {{NonLiquor, 70}, {NonLiquor, 0}}, 0, 0, 0, 0, 0, 0},
    };
    for (const auto& c : kCases) {
        SettlementAmounts amounts;
        for (const Step& step : c.steps) {
            EXPECT_EQ(keySimpleAmount(amounts, step.which, Won(step.keyed)).value(), step.excess) << c.name;
        }
        EXPECT_EQ(value(amounts, Sales).value(), c.sales) << c.name;
        EXPECT_EQ(value(amounts, Supply).value(), c.supply) << c.name;
        EXPECT_EQ(value(amounts, Vat).value(), c.vat) << c.name;
        EXPECT_EQ(value(amounts, NonLiquor).value(), c.nonLiquor) << c.name;
        EXPECT_EQ(value(amounts, Recovery).value(), c.recovery) << c.name;
        EXPECT_EQ(amounts.total.value(), c.total) << c.name;
    }
}

}  // namespace
}  // namespace collect
