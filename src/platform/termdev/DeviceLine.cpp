#include "platform/termdev/DeviceLine.h"

#include <fcntl.h>

#include <QFile>

namespace platform::termdev {

int openDevice(const QString& path, int flags) {
    return ::open(QFile::encodeName(path).constData(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

}  // namespace platform::termdev
