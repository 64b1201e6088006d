#pragma once

#include <QSet>
#include <QString>
#include <QStringView>

#include "platform/Rows.h"

namespace sales {

/// The customers whose key is `seek` (one jamo, or "00"), names descending, in three columns: code, name,
/// last trade date. `ownOnly` keeps to those of salesman `userId`.
platform::RowSource customers(QStringView seek, QStringView userId, bool ownOnly);

/// What stands in the terminal for customers on a day, whoever wrote it.
struct DaysCustomers {
    QSet<QString> visited;  ///< Codes of those with a saved or printed slip, a collection or containers.
    QSet<QString> ordered;  ///< Of those with lines of a sales slip.
};
DaysCustomers customersOfDay(QStringView workDate);

}  // namespace sales
