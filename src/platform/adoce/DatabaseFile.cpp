#include "platform/adoce/DatabaseFile.h"

#include <sys/stat.h>

#include <QFile>
#include <QHash>
#include <algorithm>

#include "platform/Trace.h"

namespace platform::adoce {
namespace {

using namespace Qt::Literals::StringLiterals;

struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

struct SharedFile {
    QByteArray name;  ///< Its path for the system.
    FileIdentity identity;
    std::shared_ptr<DatabaseFile> file;
};

QHash<QString, SharedFile>& sharedFiles() {
    static QHash<QString, SharedFile> files;
    return files;
}

/// The handheld's provider accepts "DELETE X …" without FROM.
QByteArray toSqlite(const QByteArray& text) {
    constexpr QByteArrayView kDelete = "DELETE";
    constexpr QByteArrayView kFrom = "FROM ";
    const QByteArrayView trimmed = QByteArrayView(text).trimmed();
    if (trimmed.isEmpty() || (trimmed.front() != 'D' && trimmed.front() != 'd')) return text;
    if (trimmed.first(std::min(kDelete.size(), trimmed.size())).compare(kDelete, Qt::CaseInsensitive) != 0)
        return text;
    const QByteArrayView rest = trimmed.sliced(kDelete.size()).trimmed();
    if (rest.first(std::min(kFrom.size(), rest.size())).compare(kFrom, Qt::CaseInsensitive) == 0) return text;
    return "DELETE FROM " + rest.toByteArray();
}

}  // namespace

std::shared_ptr<DatabaseFile> DatabaseFile::shared(const QString& path, QString* error) {
    const auto known = sharedFiles().constFind(path);
    const bool isKnown = known != sharedFiles().constEnd();
    const QByteArray name = isKnown ? known->name : QFile::encodeName(path);
    struct stat status = {};
    if (::stat(name.constData(), &status) != 0) {
        sharedFiles().remove(path);
        *error = u"%1 is missing"_s.arg(path);
        return nullptr;
    }
    const FileIdentity identity{status.st_dev, status.st_ino};
    if (isKnown && known->identity == identity) return known->file;

    std::shared_ptr<DatabaseFile> file(new DatabaseFile(path));
    SqliteFile& sqlite = file->sqlite_;
    if (!sqlite.isOpen() || !sqlite.execute(u"PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;"_s)) {
        *error = u"%1: %2"_s.arg(path, sqlite.errorText());
        return nullptr;
    }
    sharedFiles().insert(path, {name, identity, file});
    return file;
}

void DatabaseFile::forgetAll() {
    sharedFiles().clear();
}

SqliteStatement DatabaseFile::statement(const QByteArray& text) try {
    return sqlite_.statement(toSqlite(text));
} catch (const SqliteError& error) {
    noteFailure(error);
    throw;
}

bool DatabaseFile::begin(Survives survives) {
    endReading();
    if (inTransaction_ || !prepareFor(survives) || !run(u"BEGIN IMMEDIATE"_s)) return false;
    inTransaction_ = true;
    return true;
}

bool DatabaseFile::commit() {
    if (!inTransaction_ || !isUsable() || !run(u"COMMIT"_s)) return false;
    inTransaction_ = false;
    return true;
}

void DatabaseFile::rollback() {
    if (!inTransaction_) return;
    if (sqlite_.isInTransaction()) run(u"ROLLBACK"_s);
    inTransaction_ = false;
    isLost_ = false;
}

bool DatabaseFile::beginReading() {
    if (inTransaction_ || isReading_) return false;
    isReading_ = runKept(&beginReading_, "BEGIN");
    return isReading_;
}

void DatabaseFile::endReading() {
    if (!isReading_) return;
    isReading_ = false;
    if (sqlite_.isInTransaction()) runKept(&endReading_, "COMMIT");
}

void DatabaseFile::noteFailure(const SqliteError& failure) {
    // A text that SQLite does not accept, a table that is missing: the statement is skipped, as everywhere.
    if (inTransaction_ && !failure.isOfTheStatement()) isLost_ = true;
}

bool DatabaseFile::prepareFor(Survives survives) {
    if (survives == survives_) return true;
    // With NORMAL the write-ahead log is put on the disk by the next commit that waits, and before its pages
    // go into the database: a loss of power takes back whole transactions, the last ones first.
    const bool waits = survives == Survives::PowerLoss;
    if (!run(waits ? u"PRAGMA synchronous=FULL"_s : u"PRAGMA synchronous=NORMAL"_s)) return false;
    survives_ = survives;
    return true;
}

bool DatabaseFile::runKept(SqliteStatement* kept, const char* text) try {
    if (kept->isEmpty()) *kept = sqlite_.statement(text);
    kept->rewind();
    kept->step();
    return true;
} catch (const SqliteError& error) {
    trace(u"database: %1: %2"_s.arg(QLatin1StringView(text), QString::fromUtf8(error.what())));
    return false;
}

bool DatabaseFile::run(const QString& statement) {
    if (sqlite_.execute(statement)) return true;
    trace(u"database: %1: %2"_s.arg(statement, sqlite_.errorText()));
    return false;
}

}  // namespace platform::adoce
