#include "rovanactl/NamedDatabase.h"

#include <QDir>
#include <QFileInfo>

#include "platform/Device.h"
#include "platform/adoce/DatabaseFile.h"
#include "rovanactl/DatabaseCheck.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

QString copyOf(const QString& path) {
    if (!QFileInfo(path).isFile()) return u"there is no file %1"_s.arg(path);
    SqliteFile source(path, SqliteFile::Mode::Existing);
    if (const QString fault = source.isOpen() ? findHopeless(source) : source.errorText(); !fault.isEmpty())
        return u"%1 is no sound database of a terminal: %2"_s.arg(path, fault);
    if (const QString newer = findNewer(source); !newer.isEmpty())
        return u"%1 is not read: %2"_s.arg(path, newer);
    SqliteFile copy(platform::device::path(platform::device::kDatabaseFile), SqliteFile::Mode::Create);
    if (copy.isOpen() && copy.execute(u"PRAGMA synchronous=OFF"_s) && copy.copyFrom(source))
        return completeTables(copy);
    return u"%1 cannot be copied to %2: %3"_s.arg(path, QDir::tempPath(), copy.errorText());
}

}  // namespace

void NamedDatabase::addOption(QCommandLineParser& parser) {
    parser.addOption(
        {u"database"_s, u"Reads an archive or a backup instead of the terminal's database."_s, u"FILE"_s});
}

NamedDatabase::NamedDatabase(const QCommandLineParser& options) : before_(platform::device::folder()) {
    if (!options.isSet(u"database"_s)) return;
    folder_.emplace();
    platform::device::setFolder(folder_->path());
    const QString documents = platform::device::path(platform::device::kDocumentsFolder);
    error_ = QDir().mkpath(documents) ? copyOf(QFileInfo(options.value(u"database"_s)).absoluteFilePath())
                                      : u"the folder %1 cannot be made"_s.arg(documents);
}

NamedDatabase::~NamedDatabase() {
    if (!folder_) return;
    platform::adoce::DatabaseFile::forgetAll();
    platform::device::setFolder(before_);
}

}  // namespace admin
