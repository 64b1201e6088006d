#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <pqxx/pqxx>

#include "rovana-office/MasterFile.h"

namespace office {

/// What loading a file has changed.
struct MasterLoaded {
    std::optional<std::int64_t> version;  ///< Nothing when the office had the very same rows already.
    std::int64_t added = 0;               ///< Rows that are new, a changed one counted here and in `removed`.
    std::int64_t removed = 0;
};

/// Loads the file as part of `work`, as a version of its own. Unless `mayShrink`, throws Fault when a table
/// would lose more than half of its rows. A file that is the one of before becomes a version with `isAnew`
/// alone.
MasterLoaded loadMaster(pqxx::work& work, const MasterFile& master, bool mayShrink, bool isAnew);

/// The last step of a load of GARAE.RVN: its balances have what was sent until `sentUntil`, a time as
/// PostgreSQL reads it, or when that is empty until the load began. What was sent later still moves them.
void replaceBalances(pqxx::work& work, const QString& sentUntil);

}  // namespace office
