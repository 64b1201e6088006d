#include "Folder.h"

#include <QDir>
#include <QFile>
#include <QStringList>
#include <stdexcept>

#include "db/Schema.h"
#include "platform/Device.h"
#include "platform/Sqlite.h"
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
    platform::SqliteFile file(path, platform::SqliteFile::Mode::Create);
    file.run((u"PRAGMA journal_mode=WAL; BEGIN;"_s + db::schema::createStatements() + u"COMMIT"_s).toUtf8());
}

void writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(content) != content.size()) {
        throw std::runtime_error("cannot write a file");
    }
}

}  // namespace bench
