#pragma once

#include <QByteArrayView>
#include <span>

#include "db/VOConnection.h"
#include "platform/adoce/Survives.h"

namespace db {

using platform::adoce::Survives;

/// Keeps the statements between its creation and commit() together: all of them last, or none does. Leaving
/// the scope without commit() takes them back. A statement that fails in between is skipped, as everywhere.
class Transaction {
  public:
    explicit Transaction(Survives survives = Survives::PowerLoss);
    ~Transaction();
    Q_DISABLE_COPY_MOVE(Transaction)

    /// The connection that the statements run on; any other connection takes part as well.
    CVOConnection& connection() { return connection_; }

    /// False once no statement can join any more: the transaction did not begin, or the database gave it up
    /// (disk full, read or write error).
    bool isAlive() const;

    /// Runs a statement of the transaction. False when it failed, for what is saved whole or not at all.
    bool run(const Sql& statement);

    /// Makes the statements last. False, and everything is taken back, when that fails (disk full,
    /// transaction not begun); the trace says why.
    bool commit();

  private:
    CVOConnection connection_;
    bool isOpen_ = false;
};

/// An INSERT of a transaction that is run for many rows: its values are bound instead of going through a
/// text.
class RowInsert {
  public:
    /// `statement` is one's textForBinding(). The transaction must outlast it.
    RowInsert(Transaction& transaction, const QByteArray& statement);

    /// Adds a row with these values, UTF-8 and never null. False when it was not added: as in any statement,
    /// a value with a single quote makes it fail.
    bool run(std::span<const QByteArrayView> values);

  private:
    platform::adoce::Command command_;
};

/// Lets the look-ups between its creation and its end see the database as it is at the first of them, and
/// spares each asking for the file's lock. A change of the database ends it. Inside a transaction, or another
/// scope, it does nothing.
class ReadScope {
  public:
    ReadScope();
    ~ReadScope();
    Q_DISABLE_COPY_MOVE(ReadScope)

    /// A connection for the look-ups; those on any other connection take part as well.
    CVOConnection& connection() { return connection_; }

  private:
    CVOConnection connection_;
    bool isOpen_;
};

/// Runs one statement that changes a working table. These hold the slip that is being edited and are emptied
/// at every press in the menu, so that it need not outlast the power. False when the change was not made.
bool changeWorkingTable(const Sql& statement);

}  // namespace db
