#include "platform/SocketAddress.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <cstdio>

#include "platform/Device.h"

namespace platform {

SocketAddress::SocketAddress(const char* name)
    : folder_(::open(QFile::encodeName(device::folder()).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    address_.sun_family = AF_UNIX;
    std::snprintf(address_.sun_path, sizeof address_.sun_path, "/proc/self/fd/%d/%s", folder_, name);
}

SocketAddress::~SocketAddress() {
    if (folder_ >= 0) ::close(folder_);
}

}  // namespace platform
