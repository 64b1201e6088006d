#pragma once

#include <QStringView>

#include "platform/Rows.h"

namespace sales {

/// The customers whose key is `seek` (one jamo, or "00"), names descending, in three columns: code, name,
/// last trade date. `ownOnly` keeps to those of salesman `userId`.
platform::RowSource customers(QStringView seek, QStringView userId, bool ownOnly);

}  // namespace sales
