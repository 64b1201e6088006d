#include "books/Charge.h"

#include <gtest/gtest.h>

namespace books {
namespace {

using platform::Won;

TEST(Charge, IsOneAmountOrNone) {
    const struct {
        const char* what;
        std::int64_t total, recovery, card, cash;
        ChargeKind kind;
        std::int64_t charged;
        bool isOne;
        int flag = 0;
    } cases[] = {
        {"by card", 130500, 8000, 122500, 0, ChargeKind::Card, 122500, true},
        {"the sale has grown since", 163040, 0, 130500, 0, ChargeKind::Card, 163040, false},
        {"the sale has shrunk since", 57500, 0, 130500, 0, ChargeKind::Card, 57500, false},
        {"card and cash agree by their sum only", 130500, 0, 130500, -30000, ChargeKind::Card, 130500, false},
        {"in cash", 130500, 0, 0, 130500, ChargeKind::Cash, 130500, true},
        {"in cash, grown since", 163040, 0, 0, 130500, ChargeKind::Cash, 163040, false},
        {"on credit", 130500, 0, 0, 0, ChargeKind::Nothing, 0, true},
        {"cash handed out", 50000, 60000, 0, -10000, ChargeKind::Nothing, 0, true},
        {"goods returned by card", -5000, 0, -5000, 0, ChargeKind::Nothing, 0, true},
        {"a card payment of 0", 0, 0, 0, 0, ChargeKind::Card, 0, true, 1},
    };
    for (const auto& c : cases) {
        SettlementAmounts amounts;
        amounts.total = Won(c.total);
        amounts.containerRecovery = Won(c.recovery);
        amounts.card = Won(c.card);
        amounts.cash = Won(c.cash);
        EXPECT_EQ(chargeKind(amounts, c.flag), c.kind) << c.what;
        EXPECT_EQ(amountToCharge(amounts, c.flag), Won(c.charged)) << c.what;
        EXPECT_EQ(isChargeOneAmount(amounts), c.isOne) << c.what;
    }
}

}  // namespace
}  // namespace books
