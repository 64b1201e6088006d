#pragma once

#include <QStringView>

#include "db/Transaction.h"

/// The number of a deleted sales or container slip is given again, though what was paid under it may stay.
namespace books {

/// Gives what other customers than `gCode` have under that date, number and user a number of their own as
/// part of `transaction`: their collection slip, which becomes "입금" unless it is a simple payment, their
/// container slip, the journal of their payments and the prints. Amounts and approvals stay as they are. The
/// numbers go from 4001 on, below all that are given to new slips, whose order they leave alone. True also
/// when there is nothing to move or the customer is empty. After false, when the database did not take it,
/// the transaction must not be committed.
[[nodiscard]] bool freeNumber(db::Transaction& transaction, QStringView date, QStringView junNo,
                              QStringView userId, QStringView gCode);

}  // namespace books
