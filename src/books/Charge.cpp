#include "books/Charge.h"

namespace books {

using platform::Won;

ChargeKind chargeKind(const SettlementAmounts& amounts, int cardPaymentFlag) {
    if (amounts.card >= Won(1) || cardPaymentFlag >= 1) return ChargeKind::Card;
    return amounts.cash >= Won(1) ? ChargeKind::Cash : ChargeKind::Nothing;
}

Won amountToSettle(const SettlementAmounts& amounts) {
    return amounts.total - amounts.containerRecovery;
}

Won amountToCharge(const SettlementAmounts& amounts, int cardPaymentFlag) {
    return chargeKind(amounts, cardPaymentFlag) == ChargeKind::Nothing ? Won() : amountToSettle(amounts);
}

bool isChargeOneAmount(const SettlementAmounts& amounts) {
    switch (chargeKind(amounts)) {
        case ChargeKind::Card: return amounts.card == amountToSettle(amounts) && amounts.cash.isZero();
        case ChargeKind::Cash: return amounts.cash == amountToSettle(amounts) && amounts.card.isZero();
        case ChargeKind::Nothing: return true;
    }
    return true;
}

}  // namespace books
