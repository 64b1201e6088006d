#pragma once

#include "db/VOConnection.h"

namespace db {

/// Keeps the statements between its creation and commit() together: all of them last, or none does. Leaving
/// the scope without commit() takes them back. A statement that fails in between is skipped, as everywhere.
class Transaction {
  public:
    Transaction();
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

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

}  // namespace db
