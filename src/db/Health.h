#pragma once

#include <QString>

namespace db {

/// What keeps the terminal's database from being used, in words for the administrator, with the command that
/// mends it; empty when the file is there, opens and has the tables it needs.
QString databaseProblem();

}  // namespace db
