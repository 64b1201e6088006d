#include "Folder.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QStringList>
#include <stdexcept>

#include "db/Schema.h"
#include "platform/Device.h"
#include "platform/adoce/DatabaseFile.h"

namespace bench {

using namespace Qt::Literals::StringLiterals;

Folder::Folder() {
    if (!folder_.isValid()) throw std::runtime_error("no temporary folder");
    use();
    for (const QStringView path :
         {platform::device::kDocumentsFolder, platform::device::kStorageCardFolder}) {
        QDir().mkpath(platform::device::path(path));
    }
    emptyDatabase();
}

Folder::~Folder() {
    platform::adoce::DatabaseFile::forgetAll();
}

void Folder::use() const {
    platform::device::setFolder(folder_.path());
}

QString Folder::databaseFile() const {
    return platform::device::path(platform::device::kDatabaseFile);
}

void Folder::emptyDatabase() const {
    platform::adoce::DatabaseFile::forgetAll();
    makeDatabase(databaseFile());
}

void Folder::makeDatabase(const QString& path) {
    for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s}) QFile::remove(path + suffix);
    QString script = u"PRAGMA journal_mode=WAL; BEGIN;"_s;
    for (const db::schema::Table& table : db::schema::tables()) {
        QStringList columns;
        for (const QStringView column : table.columns) columns << column.toString() + u" TEXT"_s;
        script += u"CREATE TABLE %1 (%2);"_s.arg(table.name, columns.join(u", "_s));
    }
    for (const db::schema::Index& index : db::schema::indexes()) {
        script += u"CREATE INDEX %1 ON %2 (%3);"_s.arg(index.name, index.table, index.columns);
    }
    sqlite3* handle = nullptr;
    const bool isMade = sqlite3_open(path.toUtf8().constData(), &handle) == SQLITE_OK &&
                        sqlite3_exec(handle, (script + u"COMMIT;"_s).toUtf8().constData(), nullptr, nullptr,
                                     nullptr) == SQLITE_OK;
    sqlite3_close(handle);
    if (!isMade) throw std::runtime_error("no empty database");
}

void writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(content) != content.size()) {
        throw std::runtime_error("cannot write a file");
    }
}

}  // namespace bench
