#include "db/Archives.h"

#include <QDir>

#include "platform/Device.h"
#include "platform/Sqlite.h"
#include "platform/Trace.h"

namespace db {

using namespace Qt::Literals::StringLiterals;

void forEachArchivedRow(const QString& select, const QStringList& values,
                        const std::function<void(const QString& file, const QStringList& row)>& readRow) {
    using namespace platform;
    const QFileInfo own(device::path(device::kDatabaseFile));
    for (const QStringView folder : {device::kDocumentsFolder, device::kStorageCardFolder}) {
        const QDir files(device::path(folder));
        for (const QFileInfo& file : files.entryInfoList({u"*.cdb"_s}, QDir::Files, QDir::Name)) {
            if (file == own) continue;
            SqliteFile archive(file.filePath(), SqliteFile::Mode::ReadOnly);
            const bool isRead =
                archive.isOpen() && archive.forEachRow(select, values, [&](const QStringList& row) {
                    readRow(file.filePath(), row);
                    return true;
                });
            if (!isRead) trace(u"archive: %1: %2"_s.arg(file.fileName(), archive.errorText()));
        }
    }
}

}  // namespace db
