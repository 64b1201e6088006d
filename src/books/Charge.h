#pragma once

#include "books/TransactionRecord.h"
#include "platform/Won.h"

/// What a visit or a simple payment asks of the card host. Screen, journal, request and slip take it from
/// here, so that they never speak of different amounts.
namespace books {

enum class ChargeKind {
    Nothing,  ///< The host is not asked.
    Card,
    Cash,  ///< Cash that is entered at the host.
};

/// Card where the card amount is 1 won or more, else cash where that is. A `cardPaymentFlag` of 1 or more
/// makes it a card payment whatever the amounts are.
ChargeKind chargeKind(const SettlementAmounts& amounts, int cardPaymentFlag = 0);

/// What is settled: the total less the recovery, in won. A simple payment's total already has the recovery
/// taken off; it is taken off a second time here.
platform::Won amountToSettle(const SettlementAmounts& amounts);

/// What the host is asked for, in won: amountToSettle, 0 where it is not asked.
platform::Won amountToCharge(const SettlementAmounts& amounts, int cardPaymentFlag = 0);

/// False when card or cash, whichever the host is asked for, is another amount than it would be asked for.
/// Nothing must be sent then. True where it is not asked.
bool isChargeOneAmount(const SettlementAmounts& amounts);

}  // namespace books
