#include "books/CollectionSlip.h"

#include <algorithm>

#include "books/Deletions.h"
#include "books/PaymentJournal.h"
#include "books/PrintLog.h"
#include "books/ReusedNumber.h"
#include "db/Query.h"
#include "platform/Clock.h"

namespace books {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

namespace {

/// Deletes the rows of a number, of one user or with an empty id of everybody, with what belongs to them.
bool removeRows(db::Transaction& transaction, QStringView date, QStringView junNo, QStringView userId) {
    const QList<CollectionSlip> removed = collectionRows(date, junNo, userId);
    const bool isGone =
        deleteRows(transaction, date, junNo, userId) &&
        (userId.isEmpty() ? forgetPrints(transaction, Paper::CollectionSlip, date, junNo)
                          : forgetPrints(transaction, Paper::CollectionSlip, date, junNo, userId));
    return isGone && forgetPrepared(transaction, date, junNo, userId) &&
           takeReceivablesBack(transaction, removed);
}

/// The slip as it is saved over the rows that it replaces; nothing when they have no room in one.
std::optional<CollectionSlip> slipToSave(const CollectionSlip& entered,
                                         const QList<CollectionSlip>& replaced) {
    static constexpr db::Statement<
        u"SELECT JunNo FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' ORDER BY PCode DESC">
        kSalesSlip;
    CollectionSlip slip = entered;
    slip.Gubun =
        (db::hasRow(kSalesSlip(slip.DDate, slip.JunNo, slip.UserID)) ? kCollectionOfSale : kCollectionAlone)
            .toString();
    slip.DTime = timeOfSaving();
    slip.MSGSENDTIME.clear();
    slip.BANKTRANNO.clear();
    for (const CollectionSlip& row : replaced) {
        // One that outlived its sale still has that one's amounts, which the number's next sale replaces.
        const bool hasOutlivedSale = row.Gubun == kCollectionOfSale && row.GCode == slip.GCode;
        if (row.isSimplePayment() || hasOutlivedSale) slip.Gubun = row.Gubun;
        if (!row.isApproved()) continue;
        // One row has no room for two approvals.
        if (slip.isApproved()) return std::nullopt;
        slip.MSGSENDTIME = row.MSGSENDTIME;
        slip.BANKTRANNO = row.BANKTRANNO;
    }
    return slip;
}

bool save(const CollectionSlip& entered, bool isForCard) {
    db::Transaction transaction;
    if (!freeNumber(transaction, entered.DDate, entered.JunNo, entered.UserID, entered.GCode)) return false;
    const QList<CollectionSlip> replaced = collectionRows(entered.DDate, entered.JunNo, entered.UserID);
    const auto slip = slipToSave(entered, replaced);
    if (!slip) return false;
    const bool isNoted = isForCard ? notePrepared(transaction, *slip, replaced)
                                   : forgetPrepared(transaction, slip->DDate, slip->JunNo, slip->UserID);
    return isNoted && replaceCollection(transaction, replaced, *slip) && transaction.commit();
}

}  // namespace

QString timeOfSaving() {
    return platform::clock::now().toString(u"HH:mm"_s);
}

bool replaceCollection(db::Transaction& transaction, const QList<CollectionSlip>& replaced,
                       const CollectionSlip& slip) {
    // A statement that failed was skipped; a payment is not kept by halves.
    if (!writeRow(transaction, slip)) return false;
    CollectionSlip asBefore = slip;
    if (replaced.size() == 1) asBefore.DTime = replaced.first().DTime;
    // A slip that is saved as it was need not be printed again.
    if (replaced != QList<CollectionSlip>{asBefore} &&
        !forgetPrints(transaction, Paper::CollectionSlip, slip.DDate, slip.JunNo, slip.UserID)) {
        return false;
    }
    return takeReceivablesBack(transaction, replaced) &&
           moveReceivable(transaction, slip.GCode, slip.receivableEffect());
}

bool takeReceivablesBack(db::Transaction& transaction, const QList<CollectionSlip>& slips) {
    return std::ranges::all_of(slips, [&](const CollectionSlip& slip) {
        return moveReceivable(transaction, slip.GCode, -slip.receivableEffect());
    });
}

bool saveCollection(const CollectionSlip& slip) {
    return save(slip, false);
}

bool saveForCard(const CollectionSlip& slip) {
    return save(slip, true);
}

bool takeBackCollection(QStringView date, QStringView junNo, QStringView userId) {
    db::Transaction transaction;
    const QList<CollectionSlip> entered = collectionRows(date, junNo, userId);
    const auto prepared = preparedPayment(date, junNo, userId);
    // Without a sale's kind nothing was replaced.
    const bool hasReplaced = prepared && !prepared->slip.Gubun.isEmpty();
    const bool isBack = hasReplaced ? replaceCollection(transaction, entered, prepared->slip) &&
                                          forgetPrepared(transaction, date, junNo, userId)
                                    // An entry that is given up was never a slip that somebody deleted.
                                    : removeRows(transaction, date, junNo, userId);
    return isBack && transaction.commit();
}

QList<CollectionSlip> takeBackUnpaid(const SlipIdentity& current) {
    QList<CollectionSlip> takenBack;
    for (const JournalPayment& prepared : preparedPayments()) {
        const CollectionSlip& slip = prepared.slip;
        const bool isCurrent =
            slip.DDate == current.date && slip.JunNo == current.junNo && slip.UserID == current.userId;
        if (isCurrent || hasUnsettledPayment(slip.DDate, slip.JunNo, slip.UserID)) continue;
        const auto entered = loadCollection(slip.DDate, slip.JunNo, slip.UserID);
        if (takeBackCollection(slip.DDate, slip.JunNo, slip.UserID) && entered) takenBack << *entered;
    }
    return takenBack;
}

bool removeCollection(QStringView date, QStringView junNo, QStringView userId) {
    db::Transaction transaction;
    return noteDeletion(transaction, Paper::CollectionSlip, date, junNo, userId, userId) &&
           removeRows(transaction, date, junNo, userId) && transaction.commit();
}

bool removeCollections(QStringView date, QStringView junNo, QStringView deletedBy) {
    db::Transaction transaction;
    return removeCollections(transaction, date, junNo, deletedBy) && transaction.commit();
}

bool removeCollections(db::Transaction& transaction, QStringView date, QStringView junNo,
                       QStringView deletedBy) {
    return noteDeletion(transaction, Paper::CollectionSlip, date, junNo, {}, deletedBy) &&
           removeRows(transaction, date, junNo, {});
}

QList<CollectionSlip> approvedUnder(QStringView date, QStringView junNo) {
    QList<CollectionSlip> slips = collectionRows(date, junNo, {});
    slips.removeIf([](const CollectionSlip& slip) { return !slip.isApproved(); });
    return slips;
}

Won previousReceivable(QStringView gCode, QStringView date, QStringView junNo, QStringView userId) {
    Won balance = receivable(gCode);
    for (const CollectionSlip& slip : collectionRows(date, junNo, userId)) {
        if (slip.GCode == gCode) balance -= slip.receivableEffect();
    }
    return balance;
}

}  // namespace books
