#include "books/Approvals.h"

#include <algorithm>

#include "books/CollectionSlip.h"
#include "books/ContainerBalance.h"
#include "books/OpenPayments.h"
#include "books/PaymentJournal.h"
#include "books/PrintLog.h"
#include "books/SlipNumbers.h"
#include "books/VatSplit.h"
#include "db/Query.h"

namespace books {

using platform::Won;

namespace {

QList<CollectionSlip> rowsOf(const CollectionSlip& slip) {
    return collectionRows(slip.DDate, slip.JunNo, slip.UserID);
}

/// True when `row` is what `slip` was before its approval, but for the time of saving.
bool isUnapproved(CollectionSlip row, const CollectionSlip& slip) {
    row.DTime = slip.DTime;
    row.MSGSENDTIME = slip.MSGSENDTIME;
    row.BANKTRANNO = slip.BANKTRANNO;
    return row == slip;
}

/// True when a sale of the slip's customer stands under its number.
bool hasOwnSale(const CollectionSlip& slip) {
    static constexpr db::Statement<
        u"SELECT GCode FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode = '%s'">
        kOwnSalesSlip;
    return db::hasRow(kOwnSalesSlip(slip.DDate, slip.JunNo, slip.UserID, slip.GCode));
}

/// True when the number is another customer's by now, carries another approval or, after its sale, money that
/// was taken in another way. It is given anew once its slip is deleted. A simple payment shares it with
/// nothing.
bool isNumberTaken(const CollectionSlip& slip) {
    static constexpr db::Statement<
        u"SELECT GCode FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode <> '%s'">
        kOthersSalesSlip;
    const QList<CollectionSlip> rows = rowsOf(slip);
    if (slip.isSimplePayment()) return !rows.isEmpty();
    const bool waitsForCard = hasOwnSale(slip) || preparedPayment(slip.DDate, slip.JunNo, slip.UserID);
    const auto isTakenBy = [&](const CollectionSlip& row) {
        const bool isPaid = !row.CardMoney.isZero() || !row.WonMoney.isZero() || !row.MisuInMoney.isZero();
        return row.GCode != slip.GCode || row.isApproved() || row.isSimplePayment() ||
               (isPaid && !waitsForCard);
    };
    return std::ranges::any_of(rows, isTakenBy) ||
           db::hasRow(kOthersSalesSlip(slip.DDate, slip.JunNo, slip.UserID, slip.GCode));
}

/// By how much the slip's sale has changed since it was charged, when it came to `saleTotal`.
SaleAmounts changeOfSale(const CollectionSlip& charged, std::optional<Won> saleTotal) {
    const auto now = savedSale(charged.DDate, charged.JunNo, charged.UserID, charged.GCode);
    if (!now) return {};
    const Won total = charged.MMoney + charged.YGMoney;
    if (saleTotal.value_or(total) == total) return *now - charged.sale();
    // Its amounts were keyed: only what the sale has moved by is known.
    const VatSplit moved = splitVat(now->total() - *saleTotal);
    return {moved.supply, moved.vat, {}, {}};
}

/// By how much the slip's containers have changed since it was charged, when they were `worth`. Another
/// recovery was keyed, and stays.
Won changeOfContainers(const CollectionSlip& charged, std::optional<Won> worth) {
    if (worth != charged.YDMoney) return {};
    return savedRecovery(charged.DDate, charged.JunNo, charged.UserID, charged.GCode).value_or(Won()) -
           *worth;
}

/// The approved slip under its number, whose rows are `before`.
CollectionSlip slipUnder(const QList<CollectionSlip>& before, const CollectionSlip& approved,
                         const ChargedFor& chargedFor) {
    if (approved.isSimplePayment()) return approved;
    const bool hasSale = hasOwnSale(approved);
    if (approved.Gubun == kCollectionOfSale && !hasSale) return receivedWithoutSale(approved);
    if (before.size() == 1) {
        if (const auto paid = payCredit(before.first(), approved)) return *paid;
    }
    // Of a sale that went before its number was given again, and this one's payment another.
    if (chargedFor.sale && !hasSale) return receivedWithoutSale(approved);
    CollectionSlip slip = approved;
    if (const SaleAmounts change = changeOfSale(approved, chargedFor.sale); change.total() != Won())
        slip.moveSale(change);
    if (const Won change = changeOfContainers(approved, chargedFor.containers); !change.isZero())
        slip.moveRecovery(change);
    return slip;
}

/// Writes the approved slip over the rows of its number, or beside them.
bool putRow(db::Transaction& transaction, const QList<CollectionSlip>& before, const CollectionSlip& slip) {
    if (slip.isSimplePayment()) {
        return addApprovedRow(transaction, slip) && rowsOf(slip) == before + QList<CollectionSlip>{slip};
    }
    if (before.size() == 1 && isUnapproved(before.first(), slip)) {
        return writeApproval(transaction, slip) && rowsOf(slip) == QList<CollectionSlip>{slip};
    }
    return deleteRows(transaction, slip.DDate, slip.JunNo, slip.UserID) &&
           addApprovedRow(transaction, slip) && rowsOf(slip) == QList<CollectionSlip>{slip} &&
           forgetPrints(transaction, Paper::CollectionSlip, slip.DDate, slip.JunNo, slip.UserID) &&
           takeReceivablesBack(transaction, before) &&
           moveReceivable(transaction, slip.GCode, slip.receivableEffect());
}

}  // namespace

std::optional<CollectionSlip> putApproved(db::Transaction& transaction, const CollectionSlip& approved,
                                          const ChargedFor& chargedFor) {
    static constexpr db::Statement<
        u"UPDATE MTM SET WorkGubun = '결제' WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s'">
        kMarkPaid;
    CollectionSlip slip = approved;
    QList<CollectionSlip> before = rowsOf(slip);
    if (isNumberTaken(slip)) {
        if (!slip.isSimplePayment()) slip = receivedWithoutSale(slip);
        slip.JunNo = nextSimplePaymentNumber(slip.DDate);
        before = rowsOf(slip);
    } else {
        slip = slipUnder(before, slip, chargedFor);
    }
    const bool isThere = !slip.isSimplePayment() && before.size() == 1 && isUnapproved(before.first(), slip);
    slip.DTime = isThere ? before.first().DTime : timeOfSaving();
    if (!slip.isApproved() || !putRow(transaction, before, slip)) return std::nullopt;
    // A sale that has changed since is not what was paid.
    if (!slip.isSimplePayment() && slip.UnderMoney.isZero() &&
        !transaction.run(kMarkPaid(slip.DDate, slip.JunNo, slip.UserID)))
        return std::nullopt;
    return slip;
}

bool takeApprovalOff(db::Transaction& transaction, QStringView transactionNumber) {
    static constexpr db::Statement<
        u"UPDATE MTMOK SET MSGSENDTIME = '', BANKTRANNO = '' WHERE BANKTRANNO = '%s'">
        kTakeApprovalOff;
    static constexpr db::Statement<u"DELETE MTMOK WHERE BANKTRANNO = '%s' AND Gubun = '단순결제'">
        kDeleteSimple;
    static constexpr db::Statement<
        u"UPDATE MTM SET WorkGubun = '미발행' WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND "
        u"WorkGubun = '결제'">
        kMarkUnpaid;
    const auto slip = findByTransactionNumber(transactionNumber);
    if (!slip) return true;
    if (slip->isSimplePayment()) return transaction.run(kDeleteSimple(transactionNumber));
    return transaction.run(kTakeApprovalOff(transactionNumber)) &&
           transaction.run(kMarkUnpaid(slip->DDate, slip->JunNo, slip->UserID)) &&
           forgetPrints(transaction, Paper::CollectionSlip, slip->DDate, slip->JunNo, slip->UserID);
}

}  // namespace books
