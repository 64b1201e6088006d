#include "books/CollectionMoves.h"

#include "books/CollectionSlip.h"
#include "books/ContainerBalance.h"
#include "books/PaymentJournal.h"
#include "books/PrintLog.h"

namespace books {

using platform::Won;

namespace {

/// Puts the moved slip in the place of the one before, or deletes it where nothing is left of it.
bool keepWhatIsLeft(db::Transaction& transaction, const CollectionSlip& before, const CollectionSlip& slip) {
    if (slip.isApproved() || slip.hasAmounts()) return replaceCollection(transaction, {before}, slip);
    return deleteRows(transaction, before.DDate, before.JunNo, before.UserID) &&
           forgetPrints(transaction, Paper::CollectionSlip, before.DDate, before.JunNo, before.UserID) &&
           takeReceivablesBack(transaction, {before});
}

/// What the slip's containers are worth; 0 without any.
Won worth(const CollectionSlip& slip) {
    return savedRecovery(slip.DDate, slip.JunNo, slip.UserID, slip.GCode).value_or(Won());
}

/// Changes the slip that comes back when the payment of this one is given up in the same way.
template <typename Change>
bool changeReplaced(db::Transaction& transaction, const CollectionSlip& slip, const Change& change) {
    auto prepared = preparedPayment(slip.DDate, slip.JunNo, slip.UserID);
    if (!prepared || prepared->slip.Gubun.isEmpty() || prepared->slip.GCode != slip.GCode) return true;
    change(prepared->slip);
    // Nothing is left of it: nothing comes back.
    if (!prepared->slip.hasAmounts()) prepared->slip.Gubun.clear();
    return forgetPrepared(transaction, slip.DDate, slip.JunNo, slip.UserID) &&
           addPayment(transaction, *prepared);
}

}  // namespace

SaleChange::SaleChange(QStringView date, QStringView junNo, QStringView userId) {
    for (const CollectionSlip& slip : collectionRows(date, junNo, userId)) {
        if (!slip.isSimplePayment())
            settled_ << Settled{slip, savedSale(slip.DDate, slip.JunNo, slip.UserID, slip.GCode)};
    }
}

std::optional<Won> SaleChange::moveCollections(db::Transaction& transaction) const {
    Won moved;
    for (const auto& [before, saleBefore] : settled_) {
        const auto saleNow = savedSale(before.DDate, before.JunNo, before.UserID, before.GCode);
        if (!saleNow && !saleBefore) continue;
        // A collection that outlived its sale has that one's amounts.
        const bool isLeft = !saleBefore && before.Gubun == kCollectionOfSale;
        const SaleAmounts difference =
            saleNow.value_or(SaleAmounts{}) - (isLeft ? before.sale() : saleBefore.value_or(SaleAmounts{}));
        if (difference == SaleAmounts{}) continue;
        const auto change = [&](CollectionSlip& slip) {
            slip.moveSale(difference);
            slip.Gubun = (saleNow ? kCollectionOfSale : kCollectionAlone).toString();
        };
        CollectionSlip slip = before;
        change(slip);
        if (!keepWhatIsLeft(transaction, before, slip) || !changeReplaced(transaction, before, change))
            return std::nullopt;
        moved += difference.total();
    }
    return moved;
}

ContainerChange::ContainerChange(QStringView date, QStringView junNo, QStringView userId) {
    for (const CollectionSlip& slip : collectionRows(date, junNo, userId)) {
        if (!slip.isSimplePayment()) settled_ << Settled{slip, worth(slip)};
    }
}

std::optional<bool> ContainerChange::moveCollections(db::Transaction& transaction) const {
    bool isMoved = false;
    for (const auto& [before, worthBefore] : settled_) {
        const Won difference = worth(before) - worthBefore;
        if (difference.isZero()) continue;
        const auto change = [&](CollectionSlip& slip) {
            if (slip.YDMoney == worthBefore) slip.moveRecovery(difference);
        };
        if (!changeReplaced(transaction, before, change)) return std::nullopt;
        if (before.YDMoney != worthBefore) continue;
        CollectionSlip slip = before;
        change(slip);
        if (!keepWhatIsLeft(transaction, before, slip)) return std::nullopt;
        isMoved = true;
    }
    return isMoved;
}

std::optional<Won> takeRecoveriesBack(db::Transaction& transaction, QStringView date, QStringView junNo,
                                      QStringView userId) {
    const auto slips = collectionsOfContainers(date, junNo, userId);
    if (!slips) return std::nullopt;
    Won takenBack;
    for (const CollectionSlip& before : *slips) {
        const auto change = [](CollectionSlip& slip) {
            if (!slip.YDMoney.isZero()) slip.takeRecoveryBack();
        };
        if (!changeReplaced(transaction, before, change)) return std::nullopt;
        if (before.YDMoney.isZero()) continue;
        takenBack += before.YDMoney;
        CollectionSlip slip = before;
        change(slip);
        if (!keepWhatIsLeft(transaction, before, slip)) return std::nullopt;
    }
    return takenBack;
}

}  // namespace books
