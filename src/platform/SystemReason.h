#pragma once

#include <QString>
#include <cerrno>
#include <cstring>

namespace platform {

/// What the system says of an error of its calls, the last one's without a code.
inline QString systemReason(int code = errno) {
    return QString::fromLocal8Bit(std::strerror(code));
}

}  // namespace platform
