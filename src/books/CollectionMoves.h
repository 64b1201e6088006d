#pragma once

#include <QList>
#include <QStringView>
#include <optional>

#include "books/CollectionRows.h"
#include "books/SaleAmounts.h"
#include "db/Transaction.h"
#include "platform/Won.h"

/// What becomes of a visit's collection when its sale or its container slip changes.
namespace books {

/// The collections of a date, number and user, each with what its customer's sale comes to before a change.
class SaleChange {
  public:
    SaleChange(QStringView date, QStringView junNo, QStringView userId);

    /// Gives each the difference that the sale's change has made, or where it has outlived its sale the total
    /// of the one that its number has now, as part of `transaction`, and moves the customer's receivable with
    /// it (CollectionSlip::moveSale). A collection of which nothing is left goes. Returns by how much the
    /// totals have moved, in won; 0 where no collection is. After nothing, when the database did not take it,
    /// the transaction must not be committed.
    [[nodiscard]] std::optional<platform::Won> moveCollections(db::Transaction& transaction) const;

  private:
    struct Settled {
        CollectionSlip slip;
        std::optional<SaleAmounts> before;
    };
    QList<Settled> settled_;
};

/// The collections of a date, number and user, each with what its customer's container slip is worth before a
/// change. One that has another amount for it was keyed, and keeps it.
class ContainerChange {
  public:
    ContainerChange(QStringView date, QStringView junNo, QStringView userId);

    /// Gives the others, and those that come back when a card payment is given up, the new worth of their
    /// container slip as part of `transaction`, and moves the customer's receivable with it
    /// (CollectionSlip::moveRecovery). Returns whether one was moved; after nothing, when the database did
    /// not take it, the transaction must not be committed.
    [[nodiscard]] std::optional<bool> moveCollections(db::Transaction& transaction) const;

  private:
    struct Settled {
        CollectionSlip slip;
        platform::Won before;
    };
    QList<Settled> settled_;
};

/// Takes back as part of `transaction` what the collections of that date, number and user, or with an empty
/// id of everybody, have for a container slip that is about to go: its own user's and customer's. A
/// collection of which nothing is left goes too. Returns what they had for it, in won; after nothing, when
/// the database did not take it, the transaction must not be committed.
[[nodiscard]] std::optional<platform::Won> takeRecoveriesBack(db::Transaction& transaction, QStringView date,
                                                              QStringView junNo, QStringView userId);

}  // namespace books
