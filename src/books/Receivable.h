#pragma once

#include <QStringView>

#include "books/TransactionRecord.h"
#include "db/Transaction.h"
#include "platform/Won.h"

/// The customers' receivables, `GARAE.CJMoney`, and how a settlement moves them.
namespace books {

/// How a recovery above the total, or a return of goods, is booked as paid against the earlier receivable
/// while no money changed hands.
enum class ExcessBooking {
    None,
    ByButton,  ///< By a settling button: card, cash and unpaid are 0.
    InCash,    ///< By the keyed recovery: cash below 0 makes up for it.
};

/// How the excess of `recovery` above `total` is booked. An earlier receivable of another amount is money.
ExcessBooking excessBooking(const SettlementAmounts& amounts, platform::Won total);

/// What a settlement adds to the customer's receivable, in won: its total less all that was paid against it.
/// An excess that a settling button has booked is in the recovery already and counts once.
platform::Won receivableEffect(const SettlementAmounts& amounts);

/// The customer's balance in won; 0 for a customer who is not there.
platform::Won receivable(QStringView gCode);

/// Adds to the customer's balance as part of `transaction`; one who is not there has none. After false the
/// transaction must not be committed.
[[nodiscard]] bool moveReceivable(db::Transaction& transaction, QStringView gCode, platform::Won by);

}  // namespace books
