#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <map>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace cardhost {

/// A statement of the ledger failed; what() says why and holds no value.
class SqliteError : public std::runtime_error {
  public:
    explicit SqliteError(sqlite3* handle) : std::runtime_error(sqlite3_errmsg(handle)) {}
};

/// A prepared statement with its values bound. Ready for its next use when it is let go.
class Statement {
  public:
    Statement(sqlite3* handle, sqlite3_stmt* prepared) : handle_(handle), prepared_(prepared) {}
    ~Statement() {
        sqlite3_reset(prepared_);
        sqlite3_clear_bindings(prepared_);
    }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& bind(qint64 value) { return check(sqlite3_bind_int64(prepared_, next_++, value)); }
    Statement& bind(const QString& value) {
        const QByteArray text = value.toUtf8();
        return check(
            sqlite3_bind_text(prepared_, next_++, text.constData(), int(text.size()), SQLITE_TRANSIENT));
    }
    Statement& bind(const QByteArray& value) { return bind(QByteArrayView(value)); }
    Statement& bind(QByteArrayView value) {
        return check(
            sqlite3_bind_blob(prepared_, next_++, value.data(), int(value.size()), SQLITE_TRANSIENT));
    }

    /// Whether there is a row, the first or the next one.
    bool step() {
        const int result = sqlite3_step(prepared_);
        if (result != SQLITE_ROW && result != SQLITE_DONE) throw SqliteError(handle_);
        return result == SQLITE_ROW;
    }

    qint64 integer(int column) const { return sqlite3_column_int64(prepared_, column); }
    QByteArray bytes(int column) const {
        const auto* const data = static_cast<const char*>(sqlite3_column_blob(prepared_, column));
        return {data, sqlite3_column_bytes(prepared_, column)};
    }
    QString text(int column) const { return QString::fromUtf8(bytes(column)); }

  private:
    Statement& check(int result) {
        if (result != SQLITE_OK) throw SqliteError(handle_);
        return *this;
    }

    sqlite3* handle_;
    sqlite3_stmt* prepared_;
    int next_ = 1;
};

/// The ledger's file. Statements are prepared once; a failure is a SqliteError.
class Sqlite {
  public:
    explicit Sqlite(const QString& path);

    void execute(const char* statements);
    /// Lets go of the rows that statements still read: the write-ahead log cannot start anew meanwhile.
    void resetStatements();
    /// The statement of that text, which must be a constant of the program.
    Statement statement(const char* sql);

  private:
    struct Close {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    };
    struct Finalize {
        void operator()(sqlite3_stmt* prepared) const { sqlite3_finalize(prepared); }
    };

    std::unique_ptr<sqlite3, Close> handle_;
    std::map<std::string_view, std::unique_ptr<sqlite3_stmt, Finalize>> prepared_;
};

/// Everything or nothing: what is not committed is undone.
class SqliteTransaction {
  public:
    explicit SqliteTransaction(Sqlite& file) : file_(file) { file_.execute("BEGIN IMMEDIATE"); }
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;

    void commit();

  private:
    Sqlite& file_;
    bool isOpen_ = true;
};

}  // namespace cardhost
