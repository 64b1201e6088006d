#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

struct sqlite3;
struct sqlite3_stmt;

namespace platform {

class SqliteFile;

/// A call of SQLite's failed; what() says why and holds no value.
class SqliteError : public std::runtime_error {
  public:
    SqliteError(int code, const char* reason) : std::runtime_error(reason), code_(code) {}

    /// True when the statement is wrong, its text or its values; false when it met a fault of the storage, or
    /// somebody else's lock.
    bool isOfTheStatement() const;

  private:
    int code_;
};

/// One prepared statement, run row by row. Whatever fails throws SqliteError. An empty one takes no call but
/// isEmpty().
class SqliteStatement {
  public:
    SqliteStatement() = default;
    ~SqliteStatement() { giveBack(); }
    SqliteStatement(SqliteStatement&& other) noexcept { swap(other); }
    SqliteStatement& operator=(SqliteStatement&& other) noexcept {
        swap(other);
        return *this;
    }

    bool isEmpty() const { return handle_ == nullptr; }

    /// Binds the next "?". Texts and bytes are copied.
    SqliteStatement& bind(qint64 value);
    SqliteStatement& bind(const QString& text);
    SqliteStatement& bind(QByteArrayView bytes);
    SqliteStatement& bind(const QByteArray& bytes) { return bind(QByteArrayView(bytes)); }
    /// A text in UTF-8, never null, that stays where it is until this object goes.
    SqliteStatement& bindBorrowed(QByteArrayView text);

    /// Goes to the first or the next row; false when there is none.
    bool step();
    /// Before the first row again, for which the bound values stay; the next bind() is the first "?".
    void rewind();

    bool isReadOnly() const;
    /// As it was prepared.
    const char* text() const;

    int columns() const;
    QString name(int column) const;
    bool isNull(int column) const;
    qint64 integer(int column) const;
    QByteArray bytes(int column) const;
    /// The text in UTF-8 as it is stored.
    QByteArray textBytes(int column) const;
    /// The same until the next step.
    QByteArrayView textView(int column) const;
    /// NULL reads as a null text.
    QString text(int column) const;
    QStringList row() const;

  private:
    friend class SqliteFile;
    /// SQLite's statement and the text that the file keeps it under; null for one that is not kept.
    struct Prepared {
        explicit Prepared(sqlite3_stmt* statement) : handle(statement) {}
        QByteArray key;
        sqlite3_stmt* handle;
    };
    SqliteStatement(SqliteFile* file, std::unique_ptr<Prepared> prepared)
        : file_(file), prepared_(std::move(prepared)), handle_(prepared_->handle) {}

    void swap(SqliteStatement& other) noexcept {
        std::swap(file_, other.file_);
        prepared_.swap(other.prepared_);
        std::swap(handle_, other.handle_);
        std::swap(next_, other.next_);
    }
    void giveBack();
    SqliteStatement& check(int result);

    SqliteFile* file_ = nullptr;
    std::unique_ptr<Prepared> prepared_;
    sqlite3_stmt* handle_ = nullptr;
    int next_ = 1;  ///< The "?" that is bound next.
};

/// A connection to a database file, closed with this object; its statements must be gone by then. For one
/// thread at a time: SQLite's own locking of it is off. What others lock is waited for, three seconds at
/// most.
class SqliteFile {
  public:
    enum class Mode {
        Create,     ///< Made when it is missing.
        Existing,   ///< Must be there.
        ReadOnly,   ///< Must be there, and is not written.
        Immutable,  ///< Only read, and nobody can write it; its write-ahead log must be empty.
    };

    SqliteFile(const QString& path, Mode mode);
    ~SqliteFile();
    Q_DISABLE_COPY_MOVE(SqliteFile)

    bool isOpen() const { return isOpen_; }
    void setPatience(int milliseconds);

    /// How many pages the statements have fetched from the file so far.
    int pagesFetched() const;
    /// How much of the file is kept in memory, in KiB, until this is called again. What is more goes at once.
    void setRoom(int kibibytes);
    static constexpr int kRoom = 2000;  ///< Of a new connection.

    /// What went wrong last.
    QString errorText() const;

    /// The one statement of that text, prepared anew or kept from an earlier use. Throws SqliteError.
    SqliteStatement statement(const QByteArray& text);
    /// Ends the reading of every statement: the write-ahead log cannot start anew meanwhile.
    void rewindAll();

    /// Runs statements without values; throws SqliteError when one fails.
    void run(const QByteArray& statements);
    /// The same; false when one failed.
    bool execute(const QString& statements);

    /// Runs statements with a text for each "?" of the first and calls `readRow` on their rows as texts, NULL
    /// as an empty one, until it returns false. False when a statement failed or was broken off.
    bool forEachRow(const QString& statements, const QStringList& values,
                    const std::function<bool(const QStringList&)>& readRow);

    /// All rows of such statements; nothing when one failed.
    std::optional<QList<QStringList>> rows(const QString& statements, const QStringList& values = {});

    /// Whether the table is there and, unless that is empty, the column in it.
    bool hasColumn(QStringView table, QStringView column = {}) const;

    /// False when no transaction is open, for example because SQLite has given it up.
    bool isInTransaction() const;

    /// Replaces the whole content by that of `source`, as it is between two changes: others may go on reading
    /// and writing it. Nothing has changed when it fails.
    bool copyFrom(SqliteFile& source);

    enum class Lock { Held, InUse, Unusable };

    /// Keeps everybody else out until this object goes. Nothing of a write-ahead log is left then: the file
    /// alone is the database. `InUse` when another process has it open, `Unusable` when SQLite cannot work
    /// with it.
    Lock lock();

    /// SQLite's own, for what nothing here does.
    sqlite3* handle() const { return handle_; }

  private:
    friend class SqliteStatement;

    using Prepared = SqliteStatement::Prepared;

    sqlite3_stmt* prepare(const QByteArray& text, const char** tail);
    void keep(std::unique_ptr<Prepared> statement);
    [[noreturn]] void fail() const;

    sqlite3* handle_ = nullptr;
    bool isOpen_ = false;
    QMultiHash<QByteArray, Prepared*> idle_;
    // Those given back last stand in front of the others: a price is looked up with the same few over and
    // over.
    std::array<std::unique_ptr<Prepared>, 8> recent_;
    std::size_t oldest_ = 0;  ///< Which of them goes next when there is no room.
};

/// Everything or nothing: what is not committed is undone. Throws SqliteError.
class SqliteTransaction {
  public:
    explicit SqliteTransaction(SqliteFile& file) : file_(file) { file_.run("BEGIN IMMEDIATE"); }
    ~SqliteTransaction();
    Q_DISABLE_COPY_MOVE(SqliteTransaction)

    void commit();

  private:
    SqliteFile& file_;
    bool isOpen_ = true;
};

}  // namespace platform
