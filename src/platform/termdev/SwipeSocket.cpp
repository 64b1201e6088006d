#include "platform/termdev/SwipeSocket.h"

#include <sodium.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <array>
#include <cerrno>
#include <utility>

#include "platform/Device.h"
#include "platform/SocketAddress.h"
#include "platform/SystemReason.h"
#include "platform/Trace.h"
#include "platform/termdev/CardReader.h"

namespace platform::termdev {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Two tracks, each at most as long as the reader's buffer takes, and their line ends.
constexpr qsizetype kLongestCardBytes = 2 * kTrackBufferBytes;

constexpr char kSocketName[] = "card.socket";

/// Gives the listener the address that a terminal before may have left behind; errno is EADDRINUSE when one
/// still listens there.
bool takeAddress(int listener, const SocketAddress& address) {
    const auto isBound = [&] { return ::bind(listener, address.get(), SocketAddress::size()) == 0; };
    if (isBound()) return true;
    if (errno != EADDRINUSE) return false;
    const int asking = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (asking < 0) return false;
    const bool isLeft = ::connect(asking, address.get(), SocketAddress::size()) != 0 && errno == ECONNREFUSED;
    ::close(asking);
    if (isLeft) {
        ::unlink(address.path());
        return isBound();
    }
    errno = EADDRINUSE;
    return false;
}

bool isSameUser(int connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::getuid();
}

}  // namespace

SwipeSocket::SwipeSocket() {
    const SocketAddress address(kSocketName);
    listener_ = address.isValid() ? ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0) : -1;
    int reason = errno;
    if (listener_ >= 0) {
        const mode_t before = ::umask(0177);
        const bool isListening = takeAddress(listener_, address) && ::listen(listener_, 1) == 0;
        reason = errno;
        ::umask(before);
        if (!isListening) {
            ::close(listener_);
            listener_ = -1;
        }
    }
    if (listener_ < 0) {
        trace(u"card reader: no swipe socket: %1"_s.arg(
            reason == EADDRINUSE ? u"another terminal on this device folder has it"_s
                                 : systemReason(reason)));
        return;
    }
    path_ = device::folder() + u'/' + QLatin1StringView(kSocketName);
    listening_ = std::make_unique<QSocketNotifier>(listener_, QSocketNotifier::Read);
    connect(listening_.get(), &QSocketNotifier::activated, this, &SwipeSocket::accept);
}

SwipeSocket::~SwipeSocket() {
    endConversation();
    if (listener_ < 0) return;
    ::close(listener_);
    QFile::remove(path_);
}

void SwipeSocket::accept() {
    const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (connection < 0) return;
    if (!isSameUser(connection)) {
        ::close(connection);
        return;
    }
    // A new card takes the place of one that never came to its end.
    endConversation();
    conversation_ = connection;
    reading_ = std::make_unique<QSocketNotifier>(conversation_, QSocketNotifier::Read);
    connect(reading_.get(), &QSocketNotifier::activated, this, &SwipeSocket::read);
}

void SwipeSocket::read() {
    std::array<char, kLongestCardBytes> buffer;
    const ssize_t bytes = ::recv(conversation_, buffer.data(), buffer.size(), 0);
    const int reason = errno;
    if (bytes > 0) received_.insert(received_.end(), buffer.begin(), buffer.begin() + bytes);
    sodium_memzero(buffer.data(), buffer.size());
    const QByteArrayView text(reinterpret_cast<const char*>(received_.data()), qsizetype(received_.size()));
    const qsizetype firstEnd = text.indexOf('\n');
    const qsizetype secondEnd = firstEnd < 0 ? -1 : text.indexOf('\n', firstEnd + 1);
    if (secondEnd >= 0) {
        const SecureBytes card = std::exchange(received_, {});
        const QByteArrayView tracks(reinterpret_cast<const char*>(card.data()), qsizetype(card.size()));
        answer(CardReader::instance().isReading());
        endConversation();
        // Announced last: the password keypad may hold the announcement for long.
        CardReader::instance().swipe(tracks.first(firstEnd),
                                     tracks.sliced(firstEnd + 1, secondEnd - firstEnd - 1));
    } else if (bytes < 0 && (reason == EAGAIN || reason == EINTR)) {
        return;
    } else if (bytes <= 0 || text.size() >= kLongestCardBytes) {
        endConversation();
    }
}

void SwipeSocket::answer(bool isReading) {
    const QByteArrayView text = isReading ? "ok\n" : "off\n";
    [[maybe_unused]] const ssize_t sent =
        ::send(conversation_, text.data(), size_t(text.size()), MSG_NOSIGNAL);
}

void SwipeSocket::endConversation() {
    SecureBytes().swap(received_);
    // The notifier may be the one that is being served.
    if (reading_) {
        reading_->setEnabled(false);
        reading_.release()->deleteLater();
    }
    if (conversation_ >= 0) ::close(conversation_);
    conversation_ = -1;
}

SwipeSocket::Answer SwipeSocket::send(QByteArrayView track2, QByteArrayView track3, int timeOut) {
    const SocketAddress address(kSocketName);
    const int connection = address.isValid() ? ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0) : -1;
    if (connection < 0) return Answer::NoTerminal;
    const timeval patience{timeOut / 1000, timeOut % 1000 * 1000};
    for (const int step : {SO_SNDTIMEO, SO_RCVTIMEO})
        ::setsockopt(connection, SOL_SOCKET, step, &patience, sizeof patience);
    const auto sendAll = [&](QByteArrayView text) {
        return ::send(connection, text.data(), size_t(text.size()), MSG_NOSIGNAL) == text.size();
    };
    std::array<char, 8> answer{};
    errno = 0;
    const bool isAnswered = ::connect(connection, address.get(), SocketAddress::size()) == 0 &&
                            sendAll(track2) && sendAll("\n") && sendAll(track3) && sendAll("\n") &&
                            ::recv(connection, answer.data(), answer.size() - 1, 0) > 0;
    const bool isLate = !isAnswered && errno == EAGAIN;
    ::close(connection);
    if (!isAnswered) return isLate ? Answer::NoAnswer : Answer::NoTerminal;
    return answer[0] == 'o' && answer[1] == 'k' ? Answer::Taken : Answer::NotReading;
}

}  // namespace platform::termdev
