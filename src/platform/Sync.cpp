#include "platform/Sync.h"

#include <fcntl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>

namespace platform {

bool syncToDisk(const QString& path) {
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool isSynced = ::fsync(descriptor) == 0;
    const int reason = errno;
    ::close(descriptor);
    errno = reason;
    return isSynced;
}

bool makeFolder(const QString& path) {
    const QFileInfo folder(QDir::cleanPath(path));
    if (folder.isDir()) return true;
    const QString around = folder.absolutePath();
    return makeFolder(around) && (QDir().mkdir(folder.absoluteFilePath()) || folder.isDir()) &&
           syncToDisk(around);
}

}  // namespace platform
