#pragma once

#include <optional>

#include "books/CollectionSlip.h"
#include "books/TransactionRecord.h"
#include "platform/Won.h"

/// What the entry of a collection opens with. The store says it, wherever the entry is opened from.
namespace collect {

struct OpenedEntry {
    books::SettlementAmounts amounts;  ///< With the receivable from before the slip.
    /// The saved collection of the customer, with the amounts above; nothing when he has none.
    std::optional<books::CollectionSlip> saved;
    bool isOthers = false;       ///< The number's collection is another customer's.
    platform::Won crateDeposit;  ///< The part of the deposits for crates, in won.
    QString gCode;               ///< The customer; the saved collection's where `slip` names none.
};

/// Opens the collection of a visit: the saved one, or what the visit's saved sale comes to.
OpenedEntry openEntry(const books::SlipIdentity& slip);

/// What the entry that opens again shows in place of the amounts of `entry`: what was keyed, when the slip is
/// as it was. Where its sale has changed since, what does not depend on it stays, and the rest is settled the
/// way it was. `recovery` is what the
/// container slip is worth now, nothing without one. Nothing for another slip, other containers, a changed
/// collection, or a recovery above the total.
std::optional<books::SettlementAmounts> goOn(const books::KeptSettlement& kept,
                                             const books::SlipIdentity& slip, const OpenedEntry& entry,
                                             std::optional<platform::Won> recovery);

}  // namespace collect
