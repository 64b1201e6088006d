#include "collect/SimplePayment.h"

#include <gtest/gtest.h>

#include <vector>

namespace collect {

using books::SettlementAmounts;
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
        std::vector<Step> steps;
        std::int64_t sales, supply, vat, nonLiquor, recovery, total;
    } kCases[] = {
        {{{Supply, 5}, {Sales, 1100}, {Vat, 7}}, 1007, 1000, 7, 0, 0, 1007},
        {{{Sales, 1100}, {NonLiquor, 500}, {Recovery, 1600}}, 1100, 1000, 100, 500, 1600, 0},
        {{{Sales, 1100}, {Recovery, 1101, 1}}, 1100, 1000, 100, 0, 0, 1100},
        {{{Sales, 1100}, {Recovery, 900}, {Sales, 550, 350}}, 550, 500, 50, 0, 0, 550},
    };
    for (const auto& c : kCases) {
        SettlementAmounts amounts;
        for (const Step& step : c.steps) {
            EXPECT_EQ(keySimpleAmount(amounts, step.which, Won(step.keyed)).value(), step.excess) << c.total;
        }
        const std::pair<SimpleAmount, std::int64_t> wanted[] = {{Sales, c.sales},
                                                                {Supply, c.supply},
                                                                {Vat, c.vat},
                                                                {NonLiquor, c.nonLiquor},
                                                                {Recovery, c.recovery}};
        for (const auto& [which, won] : wanted) EXPECT_EQ(value(amounts, which).value(), won) << c.total;
        EXPECT_EQ(amounts.total.value(), c.total);
    }
}

}  // namespace
}  // namespace collect
