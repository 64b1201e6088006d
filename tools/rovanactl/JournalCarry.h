#pragma once

#include <QString>

#include "platform/Sqlite.h"

namespace admin {

using platform::SqliteFile;

/// True when the database has payments that a backup of before may not know.
bool hasPayments(SqliteFile& database);

/// Puts what `from` knows of payments into `to`, an older copy of it with the same tables: what was sent
/// since, and what became of the others. One that `to` has as open stays open where `from` has it approved:
/// the slips of `to` lack the approval, and the host gives it again. All or nothing; what is wrong, or empty.
QString carryPayments(SqliteFile& from, SqliteFile& to);

}  // namespace admin
