#pragma once

#include <sqlite3.h>

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>

namespace admin {

/// A database file opened past the terminal's own component, which makes no tables and hides every failure.
/// Only making, checking and copying a database need it.
class SqliteFile {
  public:
    enum class Mode {
        Create,
        Existing,
        Immutable,  ///< Only read, and nobody can write it; its write-ahead log must be empty.
    };

    SqliteFile(const QString& path, Mode mode);

    bool isOpen() const { return isOpen_; }

    /// What went wrong last.
    QString errorText() const;

    /// Runs statements without values or rows; false when one failed.
    bool execute(const QString& statements);

    /// Replaces the whole content by that of `source`, as it is between two changes: others may go on reading
    /// and writing it. Nothing has changed when it fails.
    bool copyFrom(SqliteFile& source);

    enum class Lock { Held, InUse, Unusable };

    /// Keeps everybody else out until this object goes. Nothing of a write-ahead log is left then: the file
    /// alone is the database. `InUse` when another process has it open, `Unusable` when SQLite cannot work
    /// with it.
    Lock lock();

    /// Runs one statement with a text for each "?" and calls `readRow` on its rows as texts, NULL as an empty
    /// one, one at a time until it returns false. False when the statement failed or was broken off.
    bool forEachRow(const QString& statement, const QStringList& values,
                    const std::function<bool(const QStringList&)>& readRow);

    /// The rows of such a statement; nothing when it failed.
    std::optional<QList<QStringList>> rows(const QString& statement, const QStringList& values = {});

  private:
    struct Closer {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    };
    std::unique_ptr<sqlite3, Closer> handle_;
    bool isOpen_ = false;
};

/// The statements that make a table and an index of the terminal's database.
QString createTableStatement(QStringView name);
QString createIndexStatement(QStringView name);

}  // namespace admin
