#pragma once

#include <optional>

#include "books/CollectionSlip.h"
#include "books/TransactionRecord.h"
#include "platform/Won.h"

/// The entry of a collection without its screen: what it opens with, which the store says wherever it is
/// opened from, and what becomes of it.
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
/// way it was. `recovery` is what the container slip is worth now, nothing without one. Nothing for another
/// slip, other containers, a changed collection, or a recovery above the total.
std::optional<books::SettlementAmounts> goOn(const books::KeptSettlement& kept,
                                             const books::SlipIdentity& slip, const OpenedEntry& entry,
                                             std::optional<platform::Won> recovery);

/// The collection on the screen, from its opening to its end.
class CollectionEntry {
  public:
    /// What the screens before it hand over.
    struct Handover {
        std::optional<platform::Won> recovery;  ///< What the container slip just finished is worth, in won.
        bool isRecoveryMoved = false;           ///< The saved collection has taken it over already.
        std::optional<books::KeptSettlement> kept;  ///< Of the entry that was left.
    };
    /// What the opening has done, and what it leaves to the salesman.
    struct Opening {
        platform::Won excess;  ///< Of the recovery over the total, in won.
        bool isGoneOn = false;
        bool hasTakenOver = false;  ///< What the containers are worth.
        /// The containers' worth, where the saved collection has another amount, which may have been keyed.
        std::optional<platform::Won> asked;
    };
    Opening open(const books::SlipIdentity& slip, bool isSalesWork, const Handover& handover);

    /// The slip that is settled.
    const books::SlipIdentity& slip() const { return kept_.slip; }
    /// The amounts that it opened with, before anything was gone on with or taken over.
    const books::SettlementAmounts& opened() const { return kept_.opened; }
    books::SettlementAmounts& amounts() { return amounts_; }
    const books::SettlementAmounts& amounts() const { return amounts_; }
    platform::Won crateDeposit() const { return crateDeposit_; }
    /// True when the saved collection of this number is another customer's; it gets one of its own when this
    /// one is saved.
    bool isOthers() const { return isOthers_; }
    bool isApproved() const { return isApproved_; }
    bool isSimplePayment() const { return isSimplePayment_; }
    /// True when the settlement goes on to the card host.
    bool isPaidOnLine() const { return isSalesWork_ && !isApproved_; }
    /// True when card or cash are not for what is due.
    bool isToSettleAgain() const;
    /// True when the saved collection is paid in full, for the total and recovery that the screen shows.
    bool isPaidAsShown() const;

    /// Takes the worth of the container slip over, as if keyed. Returns what exceeds the total.
    platform::Won takeOver(platform::Won recovery);
    /// After every change: the card of an approved collection keeps its amount.
    void holdApprovedCard();
    /// What is kept for when the entry opens again; nothing of what was paid already.
    std::optional<books::KeptSettlement> kept() const;
    /// Saves it as it shows. False when it did not get in.
    bool save(const QString& gName) const;
    /// Deletes what is saved, but for another customer's, and goes on without. False when that failed.
    bool remove();

  private:
    books::SettlementAmounts amounts_;
    books::KeptSettlement kept_;  ///< But for the amounts keyed.
    platform::Won crateDeposit_;
    platform::Won approvedCard_;  ///< What the card of an approved collection was charged.
    bool isSalesWork_ = false, isOthers_ = false, isApproved_ = false, isSimplePayment_ = false;
};

}  // namespace collect
