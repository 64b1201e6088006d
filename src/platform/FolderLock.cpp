#include "platform/FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>

#include "platform/SystemReason.h"
#include "platform/Trace.h"

namespace platform {

FolderLock::FolderLock(const QString& folder)
    : folder_(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    using namespace Qt::Literals::StringLiterals;
    if (folder_ >= 0 && ::flock(folder_, LOCK_EX | LOCK_NB) == 0) {
        state_ = State::Held;
    } else if (folder_ >= 0 && errno == EWOULDBLOCK) {
        state_ = State::Taken;
    } else {
        trace(u"%1 is not locked: %2"_s.arg(folder, systemReason()));
    }
}

FolderLock::~FolderLock() {
    if (folder_ >= 0) ::close(folder_);
}

}  // namespace platform
