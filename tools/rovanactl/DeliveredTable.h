#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <span>

#include "db/Statement.h"
#include "db/Transaction.h"

namespace admin {

/// A table that the terminal is delivered with and never writes. A row is its columns in the table's order.
struct DeliveredTable {
    QStringView name;
    db::Sql (*deleteAll)();
    db::Sql (*insert)(const QStringList& row);
};

std::span<const DeliveredTable> deliveredTables();

/// The table of that name in any case, or null.
const DeliveredTable* findDeliveredTable(QStringView name);

/// The columns of the table, in order.
std::span<const QStringView> columnsOf(const DeliveredTable& table);

/// Positions in a row of PDAUSER. Login reads the columns by these positions.
namespace user {
inline constexpr int kId = 0;
inline constexpr int kPassword = 1;
inline constexpr int kName = 2;
inline constexpr int kVatMode = 3;        ///< "2" rounds a slip's total to 10 won, "3" to 100, others not.
inline constexpr int kFollowOn = 4;       ///< What follows a sales slip: "N", "Y", "Z" or anything else.
inline constexpr int kContainerWork = 5;  ///< "X" hides the container work.
inline constexpr int kSearch = 6;         ///< "Y" searches products on the consonant board.
}  // namespace user

/// Runs one statement that changes the database within the transaction; false when it failed.
bool runIn(db::Transaction& transaction, const db::Sql& statement);

/// Why a value cannot be stored in a table; empty when it can.
QString unstorable(QStringView value);

}  // namespace admin
