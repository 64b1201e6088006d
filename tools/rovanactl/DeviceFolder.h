#pragma once

#include <QString>
#include <optional>

#include "rovanactl/demo/Demo.h"

namespace admin {

/// Makes the process's device folder: the handheld's folders, the settings file and the database with its
/// tables, indexes and delivered rows. With `demo`, invented business data and the five import files as well.
/// The database takes its name last, so a run that was stopped leaves none, and the next run starts afresh.
/// Returns what is wrong, empty when the folder is made. Never replaces a database, nor an import file of
/// anyone else.
QString createDevice(const std::optional<demo::Options>& demo);

}  // namespace admin
