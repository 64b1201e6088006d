#pragma once

#include <QList>
#include <QString>

#include "rovanactl/SqliteFile.h"

namespace admin {

/// What SQLite's own examination of the whole file finds first; empty when the file is sound.
QString findDamage(SqliteFile& database);

/// Where a database differs from the tables and indexes that the terminal is delivered with.
struct Departure {
    QString text;
    QString repair;  ///< The statements that mend it without touching a row; empty when nothing can.
};

/// Every departure, tables first: an index can only be made when its table is there.
QList<Departure> findDepartures(SqliteFile& database);

/// What is wrong with a database that nothing here can mend: damage, no table of the terminal's at all, or a
/// table with other columns. Empty when it is the terminal's and sound.
QString findHopeless(SqliteFile& database);

}  // namespace admin
