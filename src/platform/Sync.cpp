#include "platform/Sync.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>

namespace platform {

bool syncToDisk(const QString& path) {
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool isSynced = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return isSynced;
}

}  // namespace platform
