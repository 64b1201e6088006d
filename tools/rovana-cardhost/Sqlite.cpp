#include "rovana-cardhost/Sqlite.h"

namespace cardhost {

Sqlite::Sqlite(const QString& path) {
    sqlite3* handle = nullptr;
    const int result = sqlite3_open(path.toUtf8().constData(), &handle);
    handle_.reset(handle);
    if (result != SQLITE_OK) throw SqliteError(handle);
    sqlite3_busy_timeout(handle, 3000);
    // An approval that was sent must survive anything.
    execute("PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; PRAGMA foreign_keys=ON");
    // A log that has grown all the same, for example while somebody else read the file, gives its room back.
    execute("PRAGMA journal_size_limit=4194304");
}

void Sqlite::execute(const char* statements) {
    if (sqlite3_exec(handle_.get(), statements, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw SqliteError(handle_.get());
}

void Sqlite::resetStatements() {
    for (const auto& [text, prepared] : prepared_) sqlite3_reset(prepared.get());
}

Statement Sqlite::statement(const char* sql) {
    auto& prepared = prepared_[sql];
    if (!prepared) {
        sqlite3_stmt* made = nullptr;
        if (sqlite3_prepare_v3(handle_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &made, nullptr) !=
            SQLITE_OK)
            throw SqliteError(handle_.get());
        prepared.reset(made);
    }
    return {handle_.get(), prepared.get()};
}

SqliteTransaction::~SqliteTransaction() {
    if (!isOpen_) return;
    try {
        file_.execute("ROLLBACK");
    } catch (const SqliteError&) {
        // SQLite has rolled back by itself, for example when the disk was full.
    }
}

void SqliteTransaction::commit() {
    file_.resetStatements();
    file_.execute("COMMIT");
    isOpen_ = false;
}

}  // namespace cardhost
