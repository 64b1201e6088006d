#pragma once

#include <QString>
#include <functional>

#include "platform/Sqlite.h"

namespace admin {

using platform::SqliteFile;

/// The ends of the names of what SQLite keeps beside a database.
inline constexpr QStringView kJournalSuffixes[] = {u"-wal", u"-shm", u"-journal"};

/// What became of copying a database.
struct CopyResult {
    QString error;  ///< Empty when the copy stands; then nothing is half done.
    QString kept;   ///< Where the database that was there lies, if there was one.
};

/// Copies the database file `from`, which others may use meanwhile, to `to`: written beside it, examined, on
/// the disk whole and then renamed, for its owner alone. A file named `to` is replaced only with
/// `mayReplace`.
CopyResult backUpDatabase(const QString& from, const QString& to, bool mayReplace);

/// Copies the open database `source` to `to`, a new file in a folder that is there, in the same way. `edit`
/// may change the copy before it gets its name, and says what is wrong with it. What is wrong, or nothing;
/// then there is no copy.
QString copyEdited(SqliteFile& source, const QString& to, qint64 bytes,
                   const std::function<QString(SqliteFile&)>& edit);

/// Puts the backup `from` in the place of the database `to`, which no other process may have open. The backup
/// is examined first, the database that was there is kept beside `to` with the time in its name, and what the
/// backup lacks of the tables and indexes is made. Killed at any moment, `to` holds the one or the other.
CopyResult restoreDatabase(const QString& from, const QString& to);

/// Copies the database, damaged or not, to a name beside its `path` with the time in it; `kept` is that name.
CopyResult keepBeside(SqliteFile& database, const QString& path);

/// Says that a database is open elsewhere, in which process where that can be known, and what to do.
QString describeUse(const QString& database);

}  // namespace admin
