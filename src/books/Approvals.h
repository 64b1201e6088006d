#pragma once

#include <QStringView>
#include <optional>

#include "books/CollectionRows.h"
#include "db/Transaction.h"
#include "platform/Won.h"

/// The approvals of the card host on the collection slips.
namespace books {

/// What the visit of a payment came to when it was charged, in won; nothing where that is not known.
struct ChargedFor {
    std::optional<platform::Won> sale;
    std::optional<platform::Won> containers;  ///< What its container slip was worth; 0 without one.
};

/// Puts the slip of an approved payment into MTMOK as part of `transaction`, its last two columns included,
/// and makes the sales slip of the same date, number and user "결제" where that is what was paid. The row
/// that is there without the approval gets it; one on credit is paid by it (payCredit); one that says
/// something else is replaced. Where the sale came to another total when it was charged (where that is not
/// known: the slip's own), the difference is unpaid, below 0 where too much was charged; containers that were
/// worth the slip's recovery then are followed in the same way. The receivable moves as when it is saved. A
/// simple payment, which does not move it, is added to what is there. Where the number is another customer's
/// or carries another approval, the slip comes in under the next number from 7001 on, there and where its
/// sale is gone as money without one (receivedWithoutSale). Returns the slip as it stands. After nothing,
/// when the database did not take it, the transaction must not be committed.
[[nodiscard]] std::optional<CollectionSlip> putApproved(db::Transaction& transaction,
                                                        const CollectionSlip& slip,
                                                        const ChargedFor& chargedFor);

/// Takes the approval with that number off its slip again as part of `transaction`, for one that was noted by
/// mistake: the slip's amounts stay, its sale is no longer "결제", and a simple payment, which is nothing
/// without it, goes. After false the transaction must not be committed.
[[nodiscard]] bool takeApprovalOff(db::Transaction& transaction, QStringView transactionNumber);

}  // namespace books
