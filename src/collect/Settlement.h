#pragma once

#include "books/TransactionRecord.h"
#include "platform/Won.h"

/// How a visit is settled between card, cash and credit. Amounts are won and may be negative; every rule
/// recomputes the total first.
namespace collect {

/// total := sales + deposit. Non-liquor goods are not part of it.
void recomputeTotal(books::SettlementAmounts& amounts);

/// Keys one of the amounts of the sale. Sales gives supply and VAT (books::splitVat); supply and VAT give
/// sales, their sum. Then the settlement follows as after keyRecovery with the recovery as it was: returns
/// the excess of the recovery over the new total, 0 without one.
platform::Won keySales(books::SettlementAmounts& amounts, platform::Won keyed);
platform::Won keySupply(books::SettlementAmounts& amounts, platform::Won keyed);
platform::Won keyVat(books::SettlementAmounts& amounts, platform::Won keyed);

/// Keys the non-liquor amount, which nothing else follows.
void keyNonLiquor(books::SettlementAmounts& amounts, platform::Won keyed);

/// Keys the container recovery. What the one before was booked as beyond the total goes first. Cash, else
/// card, takes what it leaves of the total; the rest stays unpaid. When it exceeds the total, the excess is
/// returned (else 0), becomes the earlier receivable paid, and cash becomes minus the excess.
platform::Won keyRecovery(books::SettlementAmounts& amounts, platform::Won keyed);

/// Takes over the recovery of a container slip. One that is on the slip already changes nothing. Where
/// nothing was sold (`isContainerWork`, total 0) it is set and nothing else, so that it comes off the
/// customer's receivable; otherwise it counts as keyed. Returns what exceeds the total.
platform::Won takeOverRecovery(books::SettlementAmounts& amounts, platform::Won recovery,
                               bool isContainerWork);

/// Puts the card back to what it was charged. Cash, else the unpaid amount, takes the difference, below 0
/// where too much was charged; a recovery above the total is then settled as if keyed.
void holdCard(books::SettlementAmounts& amounts, platform::Won charged);

/// True when there is a card amount though the recovery leaves nothing of the total to pay.
bool hasCardBesideExcess(const books::SettlementAmounts& amounts);

/// True when card or cash stand for a total or a recovery that has changed since: with the unpaid amount they
/// are not what the recovery leaves of the total.
bool isOutdated(const books::SettlementAmounts& amounts);

/// Settles what the recovery leaves of the total by card, in cash or on credit, and nothing of it otherwise.
/// Where it leaves nothing, all three are 0 and the excess is paid against the earlier receivable.
void settleByCard(books::SettlementAmounts& amounts);
void settleInCash(books::SettlementAmounts& amounts);
void settleOnCredit(books::SettlementAmounts& amounts);

/// Keys the earlier receivable paid. It plays no part in the unpaid amount, which is recomputed.
void keyEarlierReceivable(books::SettlementAmounts& amounts, platform::Won keyed);

/// What the customer owes afterwards: previous receivable + total - (card + cash + recovery + earlier
/// receivable paid). An excess that a settling button has booked counts once (books::receivableEffect).
platform::Won resultingReceivable(const books::SettlementAmounts& amounts);

/// True when there is something that a settling button could settle: total or recovery are not 0.
bool hasSomethingToSettle(const books::SettlementAmounts& amounts);

/// True when card, cash, earlier receivable paid, unpaid and recovery are all 0.
bool nothingToSettle(const books::SettlementAmounts& amounts);

}  // namespace collect
