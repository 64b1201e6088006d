#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <QtGlobal>

namespace platform {

/// The address of a local socket in the device folder. It goes by way of an open folder, because a device
/// folder's own path may be longer than an address can hold; so it is good only while this object lives.
class SocketAddress {
  public:
    explicit SocketAddress(const char* name);
    ~SocketAddress();
    Q_DISABLE_COPY_MOVE(SocketAddress)

    /// False where there is no device folder.
    bool isValid() const { return folder_ >= 0; }
    const char* path() const { return address_.sun_path; }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address_); }
    static socklen_t size() { return sizeof(sockaddr_un); }

  private:
    int folder_;
    sockaddr_un address_{};
};

}  // namespace platform
