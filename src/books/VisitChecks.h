#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include "books/Visit.h"
#include "platform/Won.h"

/// What must be true of a visit, written once. Nothing here reads or writes the database.
namespace books {

/// Each says what is not true of a visit.
enum class DifferenceKind {
    PaymentOpen,            ///< It is open whether a payment was charged.
    ApprovalNotShown,       ///< An approved payment that no slip of the day shows.
    ApprovedAmountDiffers,  ///< The slip's card amount is not what was approved.
    CardNotApproved,        ///< A card amount without an approval.
    SaleWithoutCollection,  ///< Delivered goods; an order that nobody delivered is none.
    CollectionWithoutSale,  ///< A collection of goods that are not there.
    TotalDiffers,           ///< The collection has another total than its sale.
    ContainersWithoutCollection,
    RecoveryDiffers,     ///< Containers were taken back, and the collection has another amount.
    PartsDiffer,         ///< Cash, card, unpaid and recovery do not make the collection's total.
    SeveralCollections,  ///< Two collections of one visit.
    SeveralCustomers,    ///< Another customer stands under the number.
    NoReceivable,        ///< The collection moves the balance of a customer who is not there.
};

struct VisitDifference {
    DifferenceKind kind;
    platform::Won amount;    ///< What is at stake, in won: what is missing, or found less expected.
    platform::Won expected;  ///< As the one side has it; 0 where there is one side only.
    platform::Won found;     ///< As the other has it.
};

/// The reason in the salesman's words.
QStringView reasonOf(DifferenceKind kind);

/// The same with both amounts, where there are two: "판매 163,040 입금 130,500".
QString detailOf(const VisitDifference& difference);

/// What is not true of the visit by itself, in the order of the kinds; none where all agrees. A recovery
/// without a container slip was keyed and is no difference. Of the balance the terminal knows whether there
/// is one that its collections could move; what it was before the day only the office knows.
QList<VisitDifference> differencesOf(const Visit& visit);

struct CheckedVisit {
    Visit visit;
    QList<VisitDifference> differences;
};

/// The visits of a day that have differences: those of each, and those that only show beside the others. An
/// approval that stands on another visit's slip is shown there.
QList<CheckedVisit> checkVisits(const QList<Visit>& visits);

/// The day's sales and deposits against what became of them, in won. Left: `sales` less `uncollected`, plus
/// `keyedSales`, `creditedExcess` and `receivedWithoutSale`. Right: `cash` + `card` + `unpaid` + `recovery`.
struct CrossFoot {
    platform::Won sales;        ///< Delivered goods and their deposits.
    platform::Won uncollected;  ///< Of these, without a collection.
    platform::Won keyedSales;   ///< Totals of collections without goods: keyed, and simple payments.
    platform::Won creditedExcess;
    platform::Won receivedWithoutSale;
    platform::Won cash;
    platform::Won card;
    platform::Won unpaid;
    platform::Won recovery;

    platform::Won settled() const { return cash + card + unpaid + recovery; }
    /// 0 where the day agrees.
    platform::Won difference() const;
};
CrossFoot crossFoot(const QList<Visit>& visits);

}  // namespace books
