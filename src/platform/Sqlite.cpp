#include "platform/Sqlite.h"

#include <sqlite3.h>

#include <QUrl>
#include <algorithm>
#include <iterator>

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

/// The system runs fewer distinct statements than this; the bound only stops a stray caller that builds
/// texts.
constexpr qsizetype kMostIdle = 256;

constexpr int kPatienceMs = 3000;

/// SQLite counts the memory it uses behind a lock, at every allocation. Nothing here asks for the count; it
/// can only be switched off before the library is used.
[[maybe_unused]] const int kWithoutMemoryCount = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);

int openFlags(SqliteFile::Mode mode) {
    switch (mode) {
        case SqliteFile::Mode::Create: return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
        case SqliteFile::Mode::Existing: return SQLITE_OPEN_READWRITE;
        case SqliteFile::Mode::ReadOnly: return SQLITE_OPEN_READONLY;
        case SqliteFile::Mode::Immutable: return SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
    }
    return 0;
}

}  // namespace

bool SqliteError::isOfTheStatement() const {
    constexpr int kOfTheStatement[] = {SQLITE_ERROR,  SQLITE_SCHEMA,   SQLITE_CONSTRAINT,
                                       SQLITE_TOOBIG, SQLITE_MISMATCH, SQLITE_RANGE};
    // The low byte is the code without its particulars.
    return std::ranges::find(kOfTheStatement, code_ & 0xff) != std::end(kOfTheStatement);
}

SqliteStatement& SqliteStatement::check(int result) {
    if (result != SQLITE_OK) file_->fail();
    return *this;
}

SqliteStatement& SqliteStatement::bind(qint64 value) {
    return check(sqlite3_bind_int64(handle_, next_++, value));
}

SqliteStatement& SqliteStatement::bind(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    return check(sqlite3_bind_text(handle_, next_++, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT));
}

SqliteStatement& SqliteStatement::bind(QByteArrayView bytes) {
    return check(sqlite3_bind_blob(handle_, next_++, bytes.data(), int(bytes.size()), SQLITE_TRANSIENT));
}

SqliteStatement& SqliteStatement::bindBorrowed(QByteArrayView text) {
    return check(sqlite3_bind_text(handle_, next_++, text.data(), int(text.size()), SQLITE_STATIC));
}

bool SqliteStatement::step() {
    const int result = sqlite3_step(handle_);
    if (result != SQLITE_ROW && result != SQLITE_DONE) file_->fail();
    return result == SQLITE_ROW;
}

void SqliteStatement::rewind() {
    sqlite3_reset(handle_);
    next_ = 1;
}

bool SqliteStatement::isReadOnly() const {
    return sqlite3_stmt_readonly(handle_) != 0;
}

const char* SqliteStatement::text() const {
    return sqlite3_sql(handle_);
}

int SqliteStatement::columns() const {
    return sqlite3_column_count(handle_);
}

QString SqliteStatement::name(int column) const {
    return QString::fromUtf8(sqlite3_column_name(handle_, column));
}

bool SqliteStatement::isNull(int column) const {
    return sqlite3_column_type(handle_, column) == SQLITE_NULL;
}

qint64 SqliteStatement::integer(int column) const {
    return sqlite3_column_int64(handle_, column);
}

QByteArray SqliteStatement::bytes(int column) const {
    const auto* const data = static_cast<const char*>(sqlite3_column_blob(handle_, column));
    return {data, sqlite3_column_bytes(handle_, column)};
}

QByteArray SqliteStatement::textBytes(int column) const {
    return textView(column).toByteArray();
}

QByteArrayView SqliteStatement::textView(int column) const {
    // The column is looked up once. Such a value is for one thread only, like all of the connection.
    sqlite3_value* const value = sqlite3_column_value(handle_, column);
    const auto* const data = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return {data, sqlite3_value_bytes(value)};
}

QString SqliteStatement::text(int column) const {
    return QString::fromUtf8(textView(column));
}

QStringList SqliteStatement::row() const {
    QStringList texts;
    for (int column = 0; column < columns(); ++column) texts << text(column);
    return texts;
}

void SqliteStatement::giveBack() {
    if (handle_ == nullptr) return;
    if (prepared_->key.isNull()) {
        sqlite3_finalize(handle_);
    } else {
        sqlite3_reset(handle_);
        sqlite3_clear_bindings(handle_);
        file_->keep(std::move(prepared_));
    }
    handle_ = nullptr;
}

SqliteFile::SqliteFile(const QString& path, Mode mode) {
    const QByteArray name = mode == Mode::Immutable
                                ? "file:" + QUrl::toPercentEncoding(path, "/") + "?immutable=1"
                                : path.toUtf8();
    isOpen_ = sqlite3_open_v2(name.constData(), &handle_, openFlags(mode) | SQLITE_OPEN_NOMUTEX, nullptr) ==
              SQLITE_OK;
    setPatience(kPatienceMs);
}

SqliteFile::~SqliteFile() {
    for (const auto& each : recent_) {
        if (each) sqlite3_finalize(each->handle);
    }
    for (const Prepared* each : std::as_const(idle_)) {
        sqlite3_finalize(each->handle);
        delete each;
    }
    sqlite3_close_v2(handle_);
}

void SqliteFile::setPatience(int milliseconds) {
    sqlite3_busy_timeout(handle_, milliseconds);
}

int SqliteFile::pagesFetched() const {
    int pages = 0;
    int unused = 0;
    sqlite3_db_status(handle_, SQLITE_DBSTATUS_CACHE_MISS, &pages, &unused, 0);
    return pages;
}

void SqliteFile::setRoom(int kibibytes) {
    execute(u"PRAGMA cache_size=-%1"_s.arg(kibibytes));
}

QString SqliteFile::errorText() const {
    return QString::fromUtf8(sqlite3_errmsg(handle_));
}

void SqliteFile::fail() const {
    throw SqliteError(sqlite3_extended_errcode(handle_), sqlite3_errmsg(handle_));
}

/// Null for a text without a statement.
sqlite3_stmt* SqliteFile::prepare(const QByteArray& text, const char** tail) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle_, text.constData(), int(text.size()), &statement, tail) != SQLITE_OK)
        fail();
    return statement;
}

SqliteStatement SqliteFile::statement(const QByteArray& text) {
    for (auto& each : recent_) {
        // Mostly it is the very text that was kept, whose characters need no comparing.
        if (each && (each->key.isSharedWith(text) || each->key == text)) return {this, std::move(each)};
    }
    if (std::unique_ptr<Prepared> idle{idle_.take(text)}) return {this, std::move(idle)};
    const char* tail = nullptr;
    SqliteStatement made(this, std::make_unique<Prepared>(prepare(text, &tail)));
    if (made.isEmpty() || !QByteArrayView(tail, text.constEnd()).trimmed().isEmpty())
        throw SqliteError(SQLITE_ERROR, "not one statement");
    made.prepared_->key = text;
    return made;
}

void SqliteFile::keep(std::unique_ptr<Prepared> statement) {
    const auto free = std::ranges::find_if(recent_, std::logical_not());
    if (free != recent_.end()) {
        *free = std::move(statement);
        return;
    }
    statement.swap(recent_[oldest_]);
    oldest_ = (oldest_ + 1) % recent_.size();
    if (idle_.size() < kMostIdle) {
        const QByteArray& key = statement->key;
        idle_.insert(key, statement.release());
    } else {
        sqlite3_finalize(statement->handle);
    }
}

void SqliteFile::rewindAll() {
    for (sqlite3_stmt* each = nullptr; (each = sqlite3_next_stmt(handle_, each)) != nullptr;)
        sqlite3_reset(each);
}

void SqliteFile::run(const QByteArray& statements) {
    if (sqlite3_exec(handle_, statements.constData(), nullptr, nullptr, nullptr) != SQLITE_OK) fail();
}

bool SqliteFile::execute(const QString& statements) {
    return sqlite3_exec(handle_, statements.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool SqliteFile::forEachRow(const QString& statements, const QStringList& values,
                            const std::function<bool(const QStringList&)>& readRow) try {
    QByteArray left = statements.toUtf8();
    bool isFirst = true;
    while (!left.isEmpty()) {
        const char* tail = nullptr;
        SqliteStatement each(this, std::make_unique<Prepared>(prepare(left, &tail)));
        left.remove(0, tail - left.constData());
        if (each.isEmpty()) continue;
        if (std::exchange(isFirst, false)) {
            for (const QString& value : values) each.bind(value);
        }
        while (each.step()) {
            if (!readRow(each.row())) return false;
        }
    }
    return true;
} catch (const SqliteError&) {
    return false;
}

std::optional<QList<QStringList>> SqliteFile::rows(const QString& statements, const QStringList& values) {
    QList<QStringList> found;
    const bool isRead = forEachRow(statements, values, [&](const QStringList& row) {
        found << row;
        return true;
    });
    return isRead ? std::optional(found) : std::nullopt;
}

bool SqliteFile::hasColumn(QStringView table, QStringView column) const {
    const QByteArray name = column.toUtf8();
    return sqlite3_table_column_metadata(handle_, nullptr, table.toUtf8().constData(),
                                         column.isEmpty() ? nullptr : name.constData(), nullptr, nullptr,
                                         nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool SqliteFile::isInTransaction() const {
    return sqlite3_get_autocommit(handle_) == 0;
}

bool SqliteFile::copyFrom(SqliteFile& source) {
    sqlite3_backup* copy = sqlite3_backup_init(handle_, "main", source.handle_, "main");
    if (copy == nullptr) return false;
    // Finishing reports no step that had to wait for a lock in vain.
    const bool isWhole = sqlite3_backup_step(copy, -1) == SQLITE_DONE;
    return sqlite3_backup_finish(copy) == SQLITE_OK && isWhole;
}

SqliteFile::Lock SqliteFile::lock() {
    // Whoever has the file open has its write-ahead log open, and keeps the mode from being changed.
    const auto mode = rows(u"PRAGMA journal_mode=DELETE"_s);
    if (mode && mode->first().first() != u"delete") return Lock::InUse;
    if (mode && execute(u"PRAGMA locking_mode=EXCLUSIVE; BEGIN EXCLUSIVE; COMMIT"_s)) return Lock::Held;
    const int reason = sqlite3_errcode(handle_);
    return reason == SQLITE_BUSY || reason == SQLITE_LOCKED ? Lock::InUse : Lock::Unusable;
}

SqliteTransaction::~SqliteTransaction() {
    // SQLite may have rolled back by itself, for example when the disk was full.
    if (isOpen_) file_.execute(u"ROLLBACK"_s);
}

void SqliteTransaction::commit() {
    file_.rewindAll();
    file_.run("COMMIT");
    isOpen_ = false;
}

}  // namespace platform
