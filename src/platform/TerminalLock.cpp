#include "platform/TerminalLock.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QFile>

#include "platform/Device.h"
#include "platform/SocketAddress.h"
#include "platform/Trace.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr char kSocketName[] = "window.socket";

}  // namespace

TerminalLock::TerminalLock() : lock_(device::folder()) {
    if (lock_.state() == FolderLock::State::Held && !listen())
        trace(u"a second start will not find this window");
}

TerminalLock::~TerminalLock() {
    if (listener_ < 0) return;
    ::close(listener_);
    QFile::remove(path_);
}

bool TerminalLock::listen() {
    const SocketAddress address(kSocketName);
    const int listener =
        address.isValid() ? ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0) : -1;
    if (listener < 0) return false;
    // Whoever holds the lock has the address: one that is there was left by a terminal that was killed.
    ::unlink(address.path());
    const mode_t before = ::umask(0177);
    const bool isBound = ::bind(listener, address.get(), SocketAddress::size()) == 0;
    ::umask(before);
    if (!isBound) {
        ::close(listener);
        return false;
    }
    listener_ = listener;
    path_ = device::folder() + u'/' + QLatin1StringView(kSocketName);
    calls_ = std::make_unique<QSocketNotifier>(listener_, QSocketNotifier::Read);
    connect(calls_.get(), &QSocketNotifier::activated, this, [this] {
        char call = 0;
        while (::recv(listener_, &call, sizeof call, 0) >= 0) {
        }
        trace(u"the terminal was started again and shows its window");
        Q_EMIT startedAgain();
    });
    return true;
}

bool TerminalLock::callHolder() {
    const SocketAddress address(kSocketName);
    const int calling =
        address.isValid() ? ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0) : -1;
    if (calling < 0) return false;
    const char call = '!';
    const bool isCalled = ::sendto(calling, &call, sizeof call, MSG_NOSIGNAL, address.get(),
                                   SocketAddress::size()) == ssize_t(sizeof call);
    ::close(calling);
    return isCalled;
}

}  // namespace platform
