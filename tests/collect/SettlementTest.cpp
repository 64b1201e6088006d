#include "collect/Settlement.h"

#include <gtest/gtest.h>

namespace collect {

using books::SettlementAmounts;
using platform::Won;

namespace {

/// The amounts that the rules move, in won.
struct Split {
    std::int64_t total, recovery, card, cash, unpaid, earlier;
    friend bool operator==(const Split&, const Split&) = default;
};

void PrintTo(const Split& split, std::ostream* out) {
    *out << "total " << split.total << " recovery " << split.recovery << " card " << split.card << " cash "
         << split.cash << " unpaid " << split.unpaid << " earlier " << split.earlier;
}

Split split(const SettlementAmounts& amounts) {
    return {amounts.total.value(),  amounts.containerRecovery.value(),
            amounts.card.value(),   amounts.cash.value(),
            amounts.unpaid.value(), amounts.earlierReceivable.value()};
}

/// Deposits are a tenth of the total; the total is wrong until a rule recomputes it.
SettlementAmounts amountsOf(const Split& from) {
    return {.sales = Won(from.total - from.total / 10),
            .supply = {},
            .vat = {},
            .nonLiquor = Won(77),
            .deposit = Won(from.total / 10),
            .total = Won(-1),
            .containerRecovery = Won(from.recovery),
            .card = Won(from.card),
            .cash = Won(from.cash),
            .unpaid = Won(from.unpaid),
            .earlierReceivable = Won(from.earlier),
            .previousReceivable = Won(1000)};
}

TEST(Settlement, SplitsTheTotal) {
    using Rule = Won (*)(SettlementAmounts&, Won);
    const Rule recovery = keyRecovery;
    const Rule visit = [](SettlementAmounts& amounts, Won won) {
        return takeOverRecovery(amounts, won, false);
    };
    const Rule held = [](SettlementAmounts& amounts, Won charged) {
        recomputeTotal(amounts);
        return holdCard(amounts, charged), Won();
    };
    const Rule alone = [](SettlementAmounts& amounts, Won won) {
        return takeOverRecovery(amounts, won, true);
    };
    // A recovery above the total: keyed, keyed on a card payment, settled by a button.
    const Split keyed{50000, 60000, 0, -10000, 0, 10000}, button{50000, 60000, 0, 0, 0, 10000};
    const struct {
        const char* name;
        Rule rule;
        Split from;
        std::int64_t keyed;
        Split to;
        std::int64_t excess;
    } kCases[] = {
        {"cash", recovery, {50000, 0, 20000, 30000, 0, 9}, 8000, {50000, 8000, 20000, 22000, 0, 9}, 0},
        {"taken over", visit, {50000, 0, 0, 50000, 0, 0}, 8000, {50000, 8000, 0, 42000, 0, 0}, 0},
        {"taken over, none", visit, {50000, 0, 0, 0, 0, 0}, 0, {50000, 0, 0, 0, 0, 0}, 0},
        {"taken over again", visit, {50000, 60000, 1, 2, 3, 4}, 60000, {50000, 60000, 1, 2, 3, 4}, 0},
        {"taken over, smaller", visit, keyed, 40000, {50000, 40000, 0, 0, 10000, 0}, 0},
        {"taken over after a button", visit, button, 40000, {50000, 40000, 0, 0, 10000, 0}, 0},
        {"card held, above", held, button, 50000, {50000, 60000, 50000, -10000, -50000, 10000}, 0},
        {"the sale keyed, what the excess booked is gone",
         keySales,
         keyed,
         100000,
         {105000, 60000, 0, 0, 45000, 0},
         0},
        {"alone", alone, {0, 0, 0, 0, 0, 7}, 8000, {0, 8000, 0, 0, 0, 7}, 0},
        {"alone, smaller than what was keyed",
         alone,
         {0, 8000, 0, -8000, 0, 8000},
         5000,
         {0, 5000, 0, 0, 0, 0},
         0},
        {"alone, a visit's", alone, {50000, 0, 0, 50000, 0, 0}, 8000, {50000, 8000, 0, 42000, 0, 0}, 0},
    };
    for (const auto& c : kCases) {
        SettlementAmounts amounts = amountsOf(c.from);
        EXPECT_EQ(c.rule(amounts, Won(c.keyed)).value(), c.excess) << c.name;
        EXPECT_EQ(split(amounts), c.to) << c.name;
    }
}

// What a button has booked of the excess moves the customer's receivable once.
TEST(Settlement, OwesWhatItLeaves) {
    const struct {
        Split amounts;
        std::int64_t effect;
    } cases[] = {
        {{50000, 10000, 5000, 6000, 29000, 700}, 28300}, {{50000, 60000, 0, 0, 0, 10000}, -10000},
        {{50000, 60000, 0, -10000, 0, 10000}, -10000},   {{50000, 60000, 0, 0, 0, 9000}, -19000},
        {{50000, 60000, 50000, 0, 0, 10000}, -70000},    {{50000, 60000, 0, 3000, 0, 10000}, -23000},
        {{50000, 60000, 0, 0, -10000, 10000}, -20000},   {{50000, 50000, 0, 0, 0, 0}, 0},
        {{50000, 40000, 0, 0, 0, -10000}, 20000},
    };
    for (const auto& c : cases) {
        SettlementAmounts amounts = amountsOf(c.amounts);
        recomputeTotal(amounts);
        EXPECT_EQ(resultingReceivable(amounts), Won(1000 + c.effect)) << testing::PrintToString(c.amounts);
    }
}

TEST(Settlement, IsOutdatedWhenWhatWasPaidIsNotWhatIsDue) {
    const struct {
        const char* what;
        Split amounts;
        bool isOutdated;
    } cases[] = {
        {"keyed above the total", {12250, 22250, 0, -10000, 0, 10000}, false},
        {"a return paid out", {-50000, 0, 0, -50000, 0, 0}, false},
        {"a return whose containers have gone", {-50000, 0, 0, -56000, 0, 0}, true},
        {"in cash", {50000, 0, 0, 50000, 0, 0}, false},
        {"charged too much before", {50000, 0, 60000, -20000, 10000, 0}, false},
        {"containers below 0 that changed", {0, -28000, 30000, 0, 0, 0}, true},
        {"on credit", {50000, 0, 0, 0, 40000, 0}, false},
    };
    for (const auto& c : cases) {
        SettlementAmounts amounts = amountsOf(c.amounts);
        recomputeTotal(amounts);
        EXPECT_EQ(isOutdated(amounts), c.isOutdated) << c.what;
    }
}

}  // namespace
}  // namespace collect
