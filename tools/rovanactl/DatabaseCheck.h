#pragma once

#include <QList>
#include <QString>

#include "platform/Sqlite.h"

namespace admin {

using platform::SqliteFile;

/// What SQLite's own examination of the whole file finds first; empty when the file is sound.
QString findDamage(SqliteFile& database);

/// Where a database differs from the tables and indexes that the terminal is delivered with.
struct Departure {
    QString text;
    QString repair;   ///< The statements that mend it without touching a row; empty when nothing can.
    QString subject;  ///< What they make, such as "table DAYCLOSE".
};

/// Every departure, tables first: an index can only be made when its table is there.
QList<Departure> findDepartures(SqliteFile& database);

/// The `user_version` of the database: the version of its tables. Nothing when the file cannot be read.
std::optional<int> tablesVersion(SqliteFile& database);

/// Says that the database was made by a newer build than this one; empty when it was not.
QString findNewer(SqliteFile& database);

/// Makes what the database lacks of tables, columns and indexes and gives it this build's version, all in one
/// transaction; no row changes. Returns what is wrong, and then nothing is made.
QString completeTables(SqliteFile& database);

/// What is wrong with a database that nothing here can mend: damage, no table of the terminal's at all, or a
/// table with other columns. Empty when it is the terminal's and sound.
QString findHopeless(SqliteFile& database);

}  // namespace admin
