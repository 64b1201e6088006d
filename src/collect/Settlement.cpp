#include "collect/Settlement.h"

#include "books/Receivable.h"
#include "books/VatSplit.h"

namespace collect {

using books::SettlementAmounts;
using platform::Won;

namespace {

/// What is left on credit; nothing is while there is nothing to pay.
void recomputeUnpaid(SettlementAmounts& amounts) {
    amounts.unpaid = amounts.total < Won(1)
                         ? Won()
                         : amounts.total - amounts.containerRecovery - amounts.card - amounts.cash;
}

/// True, and settled, when the recovery leaves nothing of the total to pay.
bool settledByRecovery(SettlementAmounts& amounts) {
    recomputeTotal(amounts);
    amounts.card = amounts.cash = amounts.unpaid = Won();
    if (amounts.total > amounts.containerRecovery) return false;
    amounts.earlierReceivable = amounts.containerRecovery - amounts.total;
    return true;
}

/// Takes back what a recovery above `total` was booked as: an earlier receivable paid while no money changed
/// hands, by a settling button or with the cash below 0 that makes up for it.
void takeBackExcess(SettlementAmounts& amounts, Won total) {
    if (books::excessBooking(amounts, total) == books::ExcessBooking::None) return;
    amounts.cash = amounts.earlierReceivable = Won();
}

/// keyRecovery on amounts that hold no excess any more.
Won settleRecovery(SettlementAmounts& amounts, Won keyed) {
    recomputeTotal(amounts);
    amounts.containerRecovery = keyed;
    if (keyed > amounts.total) {
        const Won excess = keyed - amounts.total;
        amounts.unpaid = Won();
        amounts.earlierReceivable = excess;
        // The excess is handed out in cash: below zero on purpose, and the card amount stays.
        amounts.cash = -excess;
        return excess;
    }
    if (!amounts.cash.isZero()) {
        amounts.cash = amounts.total - amounts.containerRecovery - amounts.card;
    } else if (!amounts.card.isZero()) {
        amounts.card = amounts.total - amounts.containerRecovery - amounts.cash;
    }
    recomputeUnpaid(amounts);
    return Won();
}

/// Changes the sale and settles what the recovery leaves of its new total.
Won settleSale(SettlementAmounts& amounts, Won sales) {
    recomputeTotal(amounts);
    takeBackExcess(amounts, amounts.total);
    amounts.sales = sales;
    return settleRecovery(amounts, amounts.containerRecovery);
}

}  // namespace

void recomputeTotal(SettlementAmounts& amounts) {
    amounts.total = amounts.sales + amounts.deposit;
}

Won keySales(SettlementAmounts& amounts, Won keyed) {
    const books::VatSplit split = books::splitVat(keyed);
    amounts.supply = split.supply;
    amounts.vat = split.vat;
    return settleSale(amounts, keyed);
}

Won keySupply(SettlementAmounts& amounts, Won keyed) {
    amounts.supply = keyed;
    return settleSale(amounts, amounts.supply + amounts.vat);
}

Won keyVat(SettlementAmounts& amounts, Won keyed) {
    amounts.vat = keyed;
    return settleSale(amounts, amounts.supply + amounts.vat);
}

void keyNonLiquor(SettlementAmounts& amounts, Won keyed) {
    recomputeTotal(amounts);
    amounts.nonLiquor = keyed;
}

Won keyRecovery(SettlementAmounts& amounts, Won keyed) {
    recomputeTotal(amounts);
    takeBackExcess(amounts, amounts.total);
    return settleRecovery(amounts, keyed);
}

Won takeOverRecovery(SettlementAmounts& amounts, Won recovery, bool isContainerWork) {
    recomputeTotal(amounts);
    if (recovery == amounts.containerRecovery) return Won();
    if (!isContainerWork || !amounts.total.isZero()) return keyRecovery(amounts, recovery);
    takeBackExcess(amounts, amounts.total);
    amounts.containerRecovery = recovery;
    return Won();
}

void holdCard(SettlementAmounts& amounts, Won charged) {
    const Won moved = amounts.card - charged;
    amounts.card = charged;
    if (amounts.containerRecovery > amounts.total) {
        if (!moved.isZero()) keyRecovery(amounts, amounts.containerRecovery);
        // The recovery has left nothing of the total to pay: what was charged is below 0 unpaid.
        if (!charged.isZero()) recomputeUnpaid(amounts);
    } else if (!moved.isZero()) {
        (amounts.cash.isZero() ? amounts.unpaid : amounts.cash) += moved;
    }
}

bool hasCardBesideExcess(const SettlementAmounts& amounts) {
    return amounts.card > Won() && amounts.containerRecovery > amounts.total;
}

bool isOutdated(const SettlementAmounts& amounts) {
    if (amounts.card.isZero() && amounts.cash.isZero()) return false;
    return amounts.card + amounts.cash + amounts.unpaid != amounts.total - amounts.containerRecovery;
}

void settleByCard(SettlementAmounts& amounts) {
    if (!settledByRecovery(amounts)) amounts.card = amounts.total - amounts.containerRecovery;
}

void settleInCash(SettlementAmounts& amounts) {
    if (!settledByRecovery(amounts)) amounts.cash = amounts.total - amounts.containerRecovery;
}

void settleOnCredit(SettlementAmounts& amounts) {
    if (!settledByRecovery(amounts)) amounts.unpaid = amounts.total - amounts.containerRecovery;
}

void keyEarlierReceivable(SettlementAmounts& amounts, Won keyed) {
    recomputeTotal(amounts);
    amounts.earlierReceivable = keyed;
    recomputeUnpaid(amounts);
}

Won resultingReceivable(const SettlementAmounts& amounts) {
    return amounts.previousReceivable + books::receivableEffect(amounts);
}

bool hasSomethingToSettle(const SettlementAmounts& amounts) {
    return !amounts.total.isZero() || !amounts.containerRecovery.isZero();
}

bool nothingToSettle(const SettlementAmounts& amounts) {
    for (const Won amount :
         {amounts.card, amounts.cash, amounts.earlierReceivable, amounts.unpaid, amounts.containerRecovery}) {
        if (!amount.isZero()) return false;
    }
    return true;
}

}  // namespace collect
