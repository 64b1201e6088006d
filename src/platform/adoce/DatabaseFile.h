#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringView>
#include <memory>
#include <utility>

#include "platform/adoce/Survives.h"

namespace platform::adoce {

/// One statement of SQLite's and the text that it was made from.
struct PreparedStatement {
    PreparedStatement(QByteArray from, sqlite3_stmt* made) : text(std::move(from)), handle(made) {}
    ~PreparedStatement() { sqlite3_finalize(handle); }
    PreparedStatement(const PreparedStatement&) = delete;
    PreparedStatement& operator=(const PreparedStatement&) = delete;

    const QByteArray text;
    sqlite3_stmt* const handle;
};

/// The one SQLite handle of a database file, with its cache of prepared statements. Every connection to the
/// file shares it, so opening a connection costs a look-up rather than a file open. For one thread only, as
/// all database work of the system is: SQLite's own locking of the handle is off.
class DatabaseFile {
  public:
    /// The shared handle of the file at `path`, opened at the first call and again when the file was
    /// replaced. Null when the file is missing or is no database; `error` then says why. The file is never
    /// created.
    static std::shared_ptr<DatabaseFile> shared(const QString& path, QString* error);

    /// Forgets all shared handles; each closes when its last user lets go. For tests and file replacement.
    static void forgetAll();

    ~DatabaseFile();
    DatabaseFile(const DatabaseFile&) = delete;
    DatabaseFile& operator=(const DatabaseFile&) = delete;

    /// A prepared statement for `text`, in which every literal is a "?" already. Null on a text that SQLite
    /// does not accept; `error` says why. Give it back with release().
    PreparedStatement* acquire(const QByteArray& text, QString* error);
    void release(PreparedStatement* statement);

    /// False while the transaction that began here is lost: SQLite has rolled it back itself, or a statement
    /// of it failed on the storage. No statement may run then, or it would be kept without the others, and
    /// what could not be read must not decide what is written.
    bool isUsable() const { return !inTransaction_ || (!isLost_ && sqlite3_get_autocommit(handle_) == 0); }

    /// Makes a statement outside a transaction wait for the disk. False when that cannot be: it must not run.
    bool readyToChange() { return inTransaction_ || prepareFor(Survives::PowerLoss); }

    /// Takes note of how a statement ended, by SQLite's result code.
    void noteResult(int result);

    bool begin(Survives survives = Survives::PowerLoss);
    bool commit();
    void rollback();

    sqlite3* handle() const { return handle_; }
    QString errorText() const;

  private:
    explicit DatabaseFile(sqlite3* handle) : handle_(handle) {}

    bool run(const char* sql);
    /// What the next change survives; SQLite takes that only between two transactions.
    bool prepareFor(Survives survives);

    sqlite3* handle_;
    bool inTransaction_ = false;
    bool isLost_ = false;
    Survives survives_ = Survives::PowerLoss;
    QMultiHash<QByteArray, PreparedStatement*> idle_;
    // The statement given back last stands in front of the others: a file is loaded with one over and over.
    PreparedStatement* last_ = nullptr;
};

}  // namespace platform::adoce
