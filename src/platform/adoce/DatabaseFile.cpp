#include "platform/adoce/DatabaseFile.h"

#include <sys/stat.h>

#include <QFile>
#include <algorithm>
#include <utility>

#include "platform/Trace.h"

namespace platform::adoce {
namespace {

using namespace Qt::Literals::StringLiterals;

/// The system runs fewer distinct statements than this; the bound only stops a stray caller that builds
/// texts.
constexpr qsizetype kMostIdle = 256;

constexpr int kBusyTimeoutMs = 3000;

/// SQLite counts the memory it uses behind a lock, at every allocation. Nothing here asks for the count; it
/// can only be switched off before the library is used.
[[maybe_unused]] const int kWithoutMemoryCount = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);

struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

struct SharedFile {
    FileIdentity identity;
    std::shared_ptr<DatabaseFile> file;
};

QHash<QString, SharedFile>& sharedFiles() {
    static QHash<QString, SharedFile> files;
    return files;
}

/// The handheld's provider accepts "DELETE X …" without FROM.
QByteArray toSqlite(const QByteArray& text) {
    const QByteArray trimmed = text.trimmed();
    if (qstrnicmp(trimmed.constData(), "DELETE", 6) != 0) return trimmed;
    const QByteArray rest = trimmed.mid(6).trimmed();
    if (qstrnicmp(rest.constData(), "FROM ", 5) == 0) return trimmed;
    return "DELETE FROM " + rest;
}

}  // namespace

std::shared_ptr<DatabaseFile> DatabaseFile::shared(const QString& path, QString* error) {
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        sharedFiles().remove(path);
        *error = u"%1 is missing"_s.arg(path);
        return nullptr;
    }
    const FileIdentity identity{status.st_dev, status.st_ino};
    const auto known = sharedFiles().constFind(path);
    if (known != sharedFiles().constEnd() && known->identity == identity) return known->file;

    sqlite3* handle = nullptr;
    int result = sqlite3_open_v2(path.toUtf8().constData(), &handle,
                                 SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    std::shared_ptr<DatabaseFile> file(new DatabaseFile(handle));
    if (result == SQLITE_OK) {
        sqlite3_busy_timeout(handle, kBusyTimeoutMs);
        result = sqlite3_exec(handle, "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;", nullptr, nullptr,
                              nullptr);
    }
    if (result != SQLITE_OK) {
        *error = u"%1: %2"_s.arg(path, file->errorText());
        return nullptr;
    }
    sharedFiles().insert(path, {identity, file});
    return file;
}

void DatabaseFile::forgetAll() {
    sharedFiles().clear();
}

DatabaseFile::~DatabaseFile() {
    delete last_;
    qDeleteAll(idle_);
    sqlite3_close_v2(handle_);
}

PreparedStatement* DatabaseFile::acquire(const QByteArray& text, QString* error) {
    if (last_ != nullptr && last_->text == text) return std::exchange(last_, nullptr);
    if (PreparedStatement* idle = idle_.take(text)) return idle;

    const QByteArray sql = toSqlite(text);
    sqlite3_stmt* handle = nullptr;
    const char* tail = nullptr;
    const int result = sqlite3_prepare_v2(handle_, sql.constData(), int(sql.size()), &handle, &tail);
    noteResult(result);
    if (result != SQLITE_OK) {
        *error = errorText();
        return nullptr;
    }
    if (handle == nullptr || tail != sql.constData() + sql.size()) {
        sqlite3_finalize(handle);
        *error = u"not one statement"_s;
        return nullptr;
    }
    return new PreparedStatement(text, handle);
}

void DatabaseFile::release(PreparedStatement* statement) {
    sqlite3_reset(statement->handle);
    sqlite3_clear_bindings(statement->handle);
    PreparedStatement* before = std::exchange(last_, statement);
    if (before == nullptr) return;
    if (idle_.size() < kMostIdle) {
        idle_.insert(before->text, before);
    } else {
        delete before;
    }
}

bool DatabaseFile::begin(Survives survives) {
    if (inTransaction_ || !prepareFor(survives) || !run("BEGIN IMMEDIATE")) return false;
    inTransaction_ = true;
    return true;
}

bool DatabaseFile::commit() {
    if (!inTransaction_ || !isUsable() || !run("COMMIT")) return false;
    inTransaction_ = false;
    return true;
}

void DatabaseFile::rollback() {
    if (!inTransaction_) return;
    if (sqlite3_get_autocommit(handle_) == 0) run("ROLLBACK");
    inTransaction_ = false;
    isLost_ = false;
}

void DatabaseFile::noteResult(int result) {
    // A text that SQLite does not accept, a table that is missing: the statement is skipped, as everywhere.
    constexpr int kOfTheStatement[] = {SQLITE_OK,     SQLITE_ROW,      SQLITE_DONE,
                                       SQLITE_ERROR,  SQLITE_SCHEMA,   SQLITE_CONSTRAINT,
                                       SQLITE_TOOBIG, SQLITE_MISMATCH, SQLITE_RANGE};
    // The low byte is the code without its particulars.
    if (inTransaction_ && std::ranges::find(kOfTheStatement, result & 0xff) == std::end(kOfTheStatement))
        isLost_ = true;
}

bool DatabaseFile::prepareFor(Survives survives) {
    if (survives == survives_) return true;
    // With NORMAL the write-ahead log is put on the disk by the next commit that waits, and before its pages
    // go into the database: a loss of power takes back whole transactions, the last ones first.
    const bool waits = survives == Survives::PowerLoss;
    if (!run(waits ? "PRAGMA synchronous=FULL" : "PRAGMA synchronous=NORMAL")) return false;
    survives_ = survives;
    return true;
}

QString DatabaseFile::errorText() const {
    return QString::fromUtf8(sqlite3_errmsg(handle_));
}

bool DatabaseFile::run(const char* sql) {
    if (sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr) == SQLITE_OK) return true;
    trace(u"database: %1: %2"_s.arg(QString::fromUtf8(sql), errorText()));
    return false;
}

}  // namespace platform::adoce
