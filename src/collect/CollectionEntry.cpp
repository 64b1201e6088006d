#include "collect/CollectionEntry.h"

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

}  // namespace collect
