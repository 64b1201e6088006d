#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include "books/CollectionRows.h"
#include "books/Receivable.h"
#include "books/SaleAmounts.h"
#include "db/Transaction.h"
#include "platform/Won.h"

/// Saving and deleting collection slips, and what moves with them. A change of the slip and of the customer's
/// receivable is one transaction: the database holds both as they were or as they are, never half.
namespace books {

/// Replaces the slip of that date, number and user, and moves the customer's receivable from what the
/// replaced row had made of it to what this one makes. What another customer has under the number gets one of
/// its own (freeNumber). `Gubun` is "매출" when MTM has the sales slip of that date, number and user, else
/// "입금"; a simple payment that is corrected stays one. `DTime` is the clock's. An approval that the
/// replaced row carries stays on the slip; the slip's own last two columns are not looked at. The prints of a
/// slip that changes are forgotten. False when the slip did not get in (disk full, a single quote in a text,
/// several approvals under its number): slip and receivable are then as before.
bool saveCollection(const CollectionSlip& slip);

/// The same for a slip that is about to be paid by card: what it replaces is kept until the payment is
/// approved or given up (takeBackCollection).
bool saveForCard(const CollectionSlip& slip);

/// Takes back what saveForCard has saved: puts the replaced slip in its place, or without one deletes the
/// row. False when that failed; it can be tried again then.
bool takeBackCollection(QStringView date, QStringView junNo, QStringView userId);

/// Does so with every slip on the way to the card whose payment is not open, but for `current`, whose visit
/// is on the screen: the terminal ended there, or the payment turned out not to be charged. Returns the slips
/// that went, as they stood.
QList<CollectionSlip> takeBackUnpaid(const SlipIdentity& current = {});

/// Deletes the user's slip of that date and number, notes that he did (noteDeletion) and takes its receivable
/// back. True also when there was none; false when the database did not take the change, and then nothing is.
bool removeCollection(QStringView date, QStringView junNo, QStringView userId);

/// The same whoever wrote the slip: another user's slip of that number and date goes with it.
bool removeCollections(QStringView date, QStringView junNo, QStringView deletedBy);

/// The same as part of `transaction`, for what deletes more along with it. After false it must not be
/// committed.
[[nodiscard]] bool removeCollections(db::Transaction& transaction, QStringView date, QStringView junNo,
                                     QStringView deletedBy);

/// The slips of that date and number that carry an approval, whoever wrote them.
QList<CollectionSlip> approvedUnder(QStringView date, QStringView junNo);

/// Puts `slip` in the place of `replaced`, the rows of its date, number and user, and moves the receivables,
/// as part of `transaction`. After false it must not be committed.
[[nodiscard]] bool replaceCollection(db::Transaction& transaction, const QList<CollectionSlip>& replaced,
                                     const CollectionSlip& slip);

/// Takes off the receivables what the slips have added, as part of `transaction`. After false, no commit.
[[nodiscard]] bool takeReceivablesBack(db::Transaction& transaction, const QList<CollectionSlip>& slips);

/// The receivable in won from before the slip: the balance less what the customer's saved collection slip of
/// that date, number and user has moved it by.
platform::Won previousReceivable(QStringView gCode, QStringView date, QStringView junNo, QStringView userId);

/// The time of saving a slip, "HH:mm".
QString timeOfSaving();

}  // namespace books
