#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

#include "platform/Sqlite.h"

#include "platform/adoce/Survives.h"

namespace platform::adoce {

/// The one SQLite connection to a database file and its transaction. Every connection of the system's to the
/// file shares it, so opening one costs a look-up rather than a file open. For one thread only, as all
/// database work of the system is.
class DatabaseFile {
  public:
    /// The shared handle of the file at `path`, opened at the first call and again when the file was
    /// replaced. Null when the file is missing or is no database; `error` then says why. The file is never
    /// created.
    static std::shared_ptr<DatabaseFile> shared(const QString& path, QString* error);

    /// Forgets all shared handles; each closes when its last user lets go. For tests and file replacement.
    static void forgetAll();

    Q_DISABLE_COPY_MOVE(DatabaseFile)

    /// The statement of `text`, in which every literal is a "?" already. Throws SqliteError on a text that
    /// SQLite does not accept.
    SqliteStatement statement(const QByteArray& text);

    /// False while the transaction that began here is lost: SQLite has rolled it back itself, or a statement
    /// of it failed on the storage. No statement may run then, or it would be kept without the others, and
    /// what could not be read must not decide what is written.
    bool isUsable() const { return !inTransaction_ || (!isLost_ && sqlite_.isInTransaction()); }

    /// Makes a statement outside a transaction wait for the disk. False when that cannot be: it must not run.
    bool readyToChange() {
        endReading();
        return inTransaction_ || prepareFor(Survives::PowerLoss);
    }

    /// Takes note that a statement failed.
    void noteFailure(const SqliteError& failure);

    bool begin(Survives survives = Survives::PowerLoss);
    bool commit();
    void rollback();

    /// A read transaction, which a change ends: false, and nothing begins, while a transaction of either kind
    /// is open.
    bool beginReading();
    /// Nothing without one.
    void endReading();

    SqliteFile& sqlite() { return sqlite_; }

  private:
    explicit DatabaseFile(const QString& path) : sqlite_(path, SqliteFile::Mode::Existing) {}

    bool run(const QString& statement);
    /// The same for one that is run often, prepared at its first run.
    bool runKept(SqliteStatement* kept, const char* text);
    /// What the next change survives; SQLite takes that only between two transactions.
    bool prepareFor(Survives survives);

    SqliteFile sqlite_;
    SqliteStatement beginReading_;
    SqliteStatement endReading_;
    bool inTransaction_ = false;
    bool isReading_ = false;
    bool isLost_ = false;
    Survives survives_ = Survives::PowerLoss;
};

}  // namespace platform::adoce
