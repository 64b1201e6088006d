#include "collect/CollectionEntry.h"

#include <utility>

#include "books/Charge.h"
#include "books/ContainerBalance.h"
#include "collect/Settlement.h"

namespace collect {

using platform::Won;

OpenedEntry openEntry(const books::SlipIdentity& slip) {
    OpenedEntry entry;
    entry.gCode = slip.gCode;
    entry.saved = books::loadCollection(slip.date, slip.junNo, slip.userId);
    // A number is given again once its slip is deleted, but the collection may have stayed.
    entry.isOthers = entry.saved && !slip.gCode.isEmpty() && entry.saved->GCode != slip.gCode;
    if (entry.isOthers) entry.saved.reset();
    if (entry.saved) {
        // The collection list knows the customer's name only.
        entry.gCode = entry.saved->GCode;
        entry.amounts = entry.saved->amounts();
        entry.crateDeposit = entry.saved->YMoney;
    } else if (const auto sale = books::savedSale(slip.date, slip.junNo, slip.userId, slip.gCode)) {
        entry.amounts.sales = sale->sales();
        entry.amounts.supply = sale->supply;
        entry.amounts.vat = sale->vat;
        entry.amounts.deposit = sale->deposit();
        entry.crateDeposit = sale->crateDeposit;
    }
    if (!entry.saved || !entry.saved->isSimplePayment()) recomputeTotal(entry.amounts);
    entry.amounts.previousReceivable =
        books::previousReceivable(entry.gCode, slip.date, slip.junNo, slip.userId);
    return entry;
}

std::optional<books::SettlementAmounts> goOn(const books::KeptSettlement& kept,
                                             const books::SlipIdentity& slip, const OpenedEntry& entry,
                                             std::optional<Won> recovery) {
    if (kept.slip != slip || kept.recovery != recovery) return std::nullopt;
    if (kept.opened == entry.amounts) return kept.keyed;
    const books::SettlementAmounts& keyed = kept.keyed;
    books::SettlementAmounts amounts = entry.amounts;
    // What containers are worth comes anew from their slip.
    if (recovery.value_or(Won()) != Won()) return std::nullopt;
    if (entry.saved || keyed.containerRecovery > keyed.total || keyed.containerRecovery > amounts.total)
        return std::nullopt;
    amounts.nonLiquor = keyed.nonLiquor;
    // What it leaves of the new total is unpaid, unless it was settled.
    if (!keyed.containerRecovery.isZero()) keyRecovery(amounts, keyed.containerRecovery);
    if (!keyed.earlierReceivable.isZero()) keyEarlierReceivable(amounts, keyed.earlierReceivable);
    // A recovery as large as the total settles the visit, and the receivable paid with it.
    if (amounts.containerRecovery == amounts.total) return amounts;
    if (!keyed.card.isZero()) {
        settleByCard(amounts);
    } else if (!keyed.cash.isZero()) {
        settleInCash(amounts);
    } else if (!keyed.unpaid.isZero() || !keyed.containerRecovery.isZero()) {
        settleOnCredit(amounts);
    }
    return amounts;
}

CollectionEntry::Opening CollectionEntry::open(const books::SlipIdentity& slip, bool isSalesWork,
                                               const Handover& handover) {
    const OpenedEntry entry = openEntry(slip);
    amounts_ = entry.amounts;
    crateDeposit_ = entry.crateDeposit;
    isSalesWork_ = isSalesWork;
    isOthers_ = entry.isOthers;
    isApproved_ = entry.saved && entry.saved->isApproved();
    isSimplePayment_ = entry.saved && entry.saved->isSimplePayment();
    approvedCard_ = amounts_.card;
    // Where the way here passes the containers by, their slip says what it is worth.
    auto recovery = handover.recovery;
    if (!recovery && !isSimplePayment_)
        recovery = books::savedRecovery(slip.date, slip.junNo, slip.userId, entry.gCode);
    kept_ = {{slip.date, slip.junNo, slip.userId, entry.gCode}, entry.amounts, {}, recovery};

    Opening opening;
    const bool isToGoOn = handover.kept && !isApproved_ && !isSimplePayment_;
    if (const auto goneOn = isToGoOn ? goOn(*handover.kept, kept_.slip, entry, recovery) : std::nullopt) {
        amounts_ = *goneOn;
        opening.isGoneOn = true;
    }
    // What the saving of the containers has left unpaid is settled as if the recovery had been keyed.
    if (handover.isRecoveryMoved && !amounts_.total.isZero())
        opening.excess = keyRecovery(amounts_, amounts_.containerRecovery);
    // In what is gone on with the containers are already, or another amount was keyed for them.
    const bool isNew = recovery && recovery != amounts_.containerRecovery && !opening.isGoneOn;
    if (isNew && !handover.recovery && entry.saved) {
        opening.asked = recovery;
    } else if (isNew) {
        opening.hasTakenOver = true;
        opening.excess = takeOver(*recovery);
    }
    holdApprovedCard();
    return opening;
}

bool CollectionEntry::isToSettleAgain() const {
    if (isPaidOnLine() && !books::isChargeOneAmount(amounts_)) return true;
    return !isApproved_ && (hasCardBesideExcess(amounts_) || isOutdated(amounts_));
}

bool CollectionEntry::isPaidAsShown() const {
    const auto paid = books::loadCollection(slip().date, slip().junNo, slip().userId);
    return paid && paid->amounts().total == amounts_.total && paid->YDMoney == amounts_.containerRecovery &&
           paid->UnderMoney.isZero();
}

Won CollectionEntry::takeOver(Won recovery) {
    const Won excess = takeOverRecovery(amounts_, recovery, !isSalesWork_);
    holdApprovedCard();
    return excess;
}

void CollectionEntry::holdApprovedCard() {
    if (isApproved_) holdCard(amounts_, approvedCard_);
}

std::optional<books::KeptSettlement> CollectionEntry::kept() const {
    if (isApproved_ || isSimplePayment_) return std::nullopt;
    books::KeptSettlement kept = kept_;
    kept.keyed = amounts_;
    return kept;
}

bool CollectionEntry::save(const QString& gName) const {
    books::CollectionSlip saved;
    saved.DDate = slip().date;
    saved.GCode = slip().gCode;
    saved.GName = gName;
    saved.JunNo = slip().junNo;
    saved.UserID = slip().userId;
    saved.setAmounts(amounts_, crateDeposit_);
    return isPaidOnLine() && amounts_.card > Won() ? books::saveForCard(saved) : books::saveCollection(saved);
}

bool CollectionEntry::remove() {
    if (!isOthers_ && !books::removeCollection(slip().date, slip().junNo, slip().userId)) return false;
    isApproved_ = false;
    if (std::exchange(isSimplePayment_, false)) amounts_ = {};
    amounts_.previousReceivable =
        books::previousReceivable(slip().gCode, slip().date, slip().junNo, slip().userId);
    return true;
}

}  // namespace collect
