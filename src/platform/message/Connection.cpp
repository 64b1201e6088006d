#include "platform/message/Connection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QPointer>
#include <cerrno>

#include "platform/message/Frame.h"

namespace platform::message {
namespace {

/// True when the last call may succeed later.
bool mustWait() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

/// A notifier may be let go from within its own signal.
void letGo(std::unique_ptr<QSocketNotifier>* notifier) {
    if (!*notifier) return;
    (*notifier)->setEnabled(false);
    notifier->release()->deleteLater();
}

}  // namespace

std::optional<quint32> parseAddress(QStringView text) {
    in_addr address = {};
    if (::inet_pton(AF_INET, text.toUtf8().constData(), &address) != 1 || address.s_addr == INADDR_ANY) {
        return std::nullopt;
    }
    return address.s_addr;
}

Connection::Start Connection::open(quint32 address, quint16 port) {
    close();
    socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (socket_ < 0) return Start::NoSocket;
    // A request is one frame, which nothing follows before the reply.
    const int on = 1;
    ::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    sockaddr_in peer = {};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    peer.sin_addr.s_addr = address;
    if (::connect(socket_, reinterpret_cast<const sockaddr*>(&peer), sizeof(peer)) != 0 &&
        errno != EINPROGRESS) {
        const bool isForbidden = errno == EACCES || errno == EPERM;
        close();
        return isForbidden ? Start::NoSocket : Start::Failed;
    }
    onReadable_ = std::make_unique<QSocketNotifier>(socket_, QSocketNotifier::Read);
    onReadable_->setEnabled(false);
    connect(onReadable_.get(), &QSocketNotifier::activated, this, &Connection::readable);
    onWritable_ = std::make_unique<QSocketNotifier>(socket_, QSocketNotifier::Write);
    connect(onWritable_.get(), &QSocketNotifier::activated, this, &Connection::writable);
    return Start::UnderWay;
}

void Connection::write(const QByteArray& bytes) {
    if (!onWritable_) return;
    unsent_ += bytes;
    onWritable_->setEnabled(true);
}

QByteArray Connection::read() {
    QByteArray bytes(kFrameLimit, Qt::Uninitialized);
    const ssize_t received = ::recv(socket_, bytes.data(), size_t(bytes.size()), 0);
    if (received == 0 || (received < 0 && !mustWait())) isOver_ = true;
    bytes.truncate(received > 0 ? received : 0);
    return bytes;
}

void Connection::close() {
    letGo(&onReadable_);
    letGo(&onWritable_);
    if (socket_ >= 0) ::close(socket_);
    socket_ = -1;
    isConnected_ = false;
    isOver_ = false;
    unsent_.clear();
}

void Connection::readable() {
    const QPointer<Connection> self(this);
    Q_EMIT readyRead();
    if (self && isOver_) lose();
}

void Connection::writable() {
    if (!isConnected_) {
        int error = 0;
        socklen_t size = sizeof(error);
        ::getsockopt(socket_, SOL_SOCKET, SO_ERROR, &error, &size);
        if (error != 0) return lose();
        isConnected_ = true;
        onReadable_->setEnabled(true);
        onWritable_->setEnabled(!unsent_.isEmpty());
        Q_EMIT connected();
        return;
    }
    const ssize_t sent = ::send(socket_, unsent_.constData(), size_t(unsent_.size()), MSG_NOSIGNAL);
    if (sent < 0) {
        if (!mustWait()) lose();
        return;
    }
    unsent_.remove(0, sent);
    if (!unsent_.isEmpty()) return;
    onWritable_->setEnabled(false);
    Q_EMIT written();
}

/// What came before the end can still be read.
void Connection::lose() {
    letGo(&onReadable_);
    letGo(&onWritable_);
    Q_EMIT lost();
}

}  // namespace platform::message
