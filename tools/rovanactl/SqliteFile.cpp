#include "rovanactl/SqliteFile.h"

#include <QStringBuilder>
#include <QUrl>
#include <algorithm>

#include "db/Schema.h"

namespace admin {

using namespace Qt::Literals::StringLiterals;

SqliteFile::SqliteFile(const QString& path, Mode mode) {
    sqlite3* handle = nullptr;
    const bool isImmutable = mode == Mode::Immutable;
    const int flags = isImmutable ? SQLITE_OPEN_READONLY | SQLITE_OPEN_URI
                                  : SQLITE_OPEN_READWRITE | (mode == Mode::Create ? SQLITE_OPEN_CREATE : 0);
    const QByteArray name =
        isImmutable ? "file:" + QUrl::toPercentEncoding(path, "/") + "?immutable=1" : path.toUtf8();
    isOpen_ = sqlite3_open_v2(name.constData(), &handle, flags, nullptr) == SQLITE_OK;
    handle_.reset(handle);
    sqlite3_busy_timeout(handle, 3000);
}

QString SqliteFile::errorText() const {
    return QString::fromUtf8(sqlite3_errmsg(handle_.get()));
}

bool SqliteFile::execute(const QString& statements) {
    return sqlite3_exec(handle_.get(), statements.toUtf8().constData(), nullptr, nullptr, nullptr) ==
           SQLITE_OK;
}

bool SqliteFile::forEachRow(const QString& statement, const QStringList& values,
                            const std::function<bool(const QStringList&)>& readRow) {
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(handle_.get(), statement.toUtf8().constData(), -1, &prepared, nullptr) !=
        SQLITE_OK) {
        return false;
    }
    for (int i = 0; i < values.size(); ++i) {
        const QByteArray text = values[i].toUtf8();
        sqlite3_bind_text(prepared, i + 1, text.constData(), int(text.size()), SQLITE_TRANSIENT);
    }
    int result = sqlite3_step(prepared);
    for (bool isWanted = true; result == SQLITE_ROW && isWanted;) {
        QStringList row;
        for (int column = 0; column < sqlite3_column_count(prepared); ++column) {
            row << QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(prepared, column)));
        }
        isWanted = readRow(row);
        if (isWanted) result = sqlite3_step(prepared);
    }
    sqlite3_finalize(prepared);
    return result == SQLITE_DONE;
}

std::optional<QList<QStringList>> SqliteFile::rows(const QString& statement, const QStringList& values) {
    QList<QStringList> found;
    const bool isRead = forEachRow(statement, values, [&](const QStringList& row) {
        found << row;
        return true;
    });
    return isRead ? std::optional(found) : std::nullopt;
}

bool SqliteFile::copyFrom(SqliteFile& source) {
    sqlite3_backup* copy = sqlite3_backup_init(handle_.get(), "main", source.handle_.get(), "main");
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
    const int reason = sqlite3_errcode(handle_.get());
    return reason == SQLITE_BUSY || reason == SQLITE_LOCKED ? Lock::InUse : Lock::Unusable;
}

QString createTableStatement(QStringView name) {
    const db::schema::Table* table = db::schema::findTable(name);
    QStringList columns;
    for (const QStringView column : table->columns) columns << column % u" TEXT"_s;
    return u"CREATE TABLE "_s % table->name % u" ("_s % columns.join(u", "_s) % u");"_s;
}

QString createIndexStatement(QStringView name) {
    const auto index =
        std::ranges::find_if(db::schema::indexes(), [&](const auto& each) { return each.name == name; });
    return u"CREATE INDEX "_s % index->name % u" ON "_s % index->table % u" ("_s % index->columns % u");"_s;
}

}  // namespace admin
