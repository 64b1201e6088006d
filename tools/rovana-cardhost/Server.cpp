#include "rovana-cardhost/Server.h"

#include <sys/resource.h>

#include <QFile>
#include <QHostAddress>
#include <QTcpSocket>
#include <QtEndian>
#include <algorithm>
#include <tuple>

#include "platform/Trace.h"

namespace cardhost {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using platform::message::Frame;
using platform::message::FrameKind;
using platform::message::kFrameLimit;
using platform::message::OpenedRequest;

constexpr auto kIdleTime = 60s;
constexpr auto kProofTime = 10s;          ///< For the first request of a connection.
constexpr auto kUnwelcomeProofTime = 1s;  ///< The same, from an address that connects too often.
/// What a connection has in any case: a terminal's request may come this long after its connection.
constexpr auto kGrace = 20ms;
constexpr auto kAgain = 5ms;
constexpr auto kAcceptAgain = 100ms;
constexpr qsizetype kMostTerminals = 512;
constexpr int kHeap = 32;  ///< Connections that are taken before any is read.
constexpr qsizetype kOwnDescriptors = 64;
/// A flood of connections must not push an honest one out of the system's own queue.
constexpr int kQueue = 4096;
constexpr qint64 kMostUnread = 4 * kFrameLimit;
constexpr qsizetype kPieceSize = 16;
constexpr auto kPieceTime = 2ms;

/// As many connections as the process may have descriptors for.
qsizetype mostTerminals() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return kMostTerminals;
    const rlim_t wanted = rlim_t(kMostTerminals + kHeap + kOwnDescriptors);
    if (limit.rlim_cur < wanted) {
        limit.rlim_cur = std::min(wanted, limit.rlim_max);
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
    const auto descriptors = qsizetype(std::min(limit.rlim_cur, wanted));
    return std::max<qsizetype>(1, descriptors - kHeap - kOwnDescriptors);
}

/// Sends the bytes piece by piece, each on its own.
void sendInPieces(QTcpSocket* socket, const QByteArray& bytes) {
    socket->write(bytes.first(std::min(kPieceSize, bytes.size())));
    socket->flush();
    if (bytes.size() <= kPieceSize) return;
    QTimer::singleShot(kPieceTime, socket,
                       [socket, rest = bytes.sliced(kPieceSize)] { sendInPieces(socket, rest); });
}

}  // namespace

Server::Listener::Listener() {
    setListenBacklogSize(kQueue);
    setMaxPendingConnections(kHeap);
}

void Server::Listener::incomingConnection(qintptr descriptor) {
    auto* const socket = new QTcpSocket(this);
    // Before its first byte is read.
    socket->setReadBufferSize(kFrameLimit);
    socket->setSocketDescriptor(descriptor);
    addPendingConnection(socket);
}

Server::Server(Ledger& ledger, QString folder, QList<Fault> faults, QObject* parent)
    : QObject(parent),
      ledger_(ledger),
      folder_(std::move(folder)),
      faults_(std::move(faults)),
      mostTerminals_(mostTerminals()),
      connections_(100, 20),
      requestsOf_(500, 100),
      complaints_(100, 1) {
    again_.setSingleShot(true);
    connect(&again_, &QTimer::timeout, this, &Server::accept);
    // Queued, so that the listener stops at its heap: it would go on taking as long as any come.
    connect(&listener_, &QTcpServer::newConnection, this, &Server::accept, Qt::QueuedConnection);
    connect(&listener_, &QTcpServer::acceptError, this, [this] {
        complain(u"no connection can be taken: %1"_s.arg(listener_.errorString()));
        QTimer::singleShot(kAcceptAgain, &listener_, &QTcpServer::resumeAccepting);
    });
}

bool Server::listen(quint16 port) {
    return listener_.listen(QHostAddress::LocalHost, port);
}

void Server::accept() {
    while (listener_.hasPendingConnections()) {
        if (terminals_.size() >= mostTerminals_ && !makeRoom()) return again_.start(kAgain);
        admit(listener_.nextPendingConnection());
    }
}

void Server::admit(QTcpSocket* socket) {
    if (socket->state() != QAbstractSocket::ConnectedState) return socket->deleteLater();
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QObject::destroyed, this, [this, socket] { terminals_.remove(socket); });
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    Terminal& terminal = terminals_[socket];
    terminal.address = socket->peerAddress().toString();
    terminal.since = std::chrono::steady_clock::now();
    terminal.isUnwelcome = !connections_.take(terminal.address);
    if (terminal.isUnwelcome) complain(u"too many connections from %1"_s.arg(terminal.address));
    terminal.idle = new QTimer(socket);
    terminal.idle->setSingleShot(true);
    connect(terminal.idle, &QTimer::timeout, socket, &QTcpSocket::abort);
    terminal.idle->start(terminal.isUnwelcome ? kUnwelcomeProofTime : kProofTime);
    read(socket);
}

/// Closes the connection that can best be spared: one of an unwelcome address, one that has brought no
/// request, the one that has done nothing for longest. False while all have just come.
bool Server::makeRoom() {
    const Moment latest = std::chrono::steady_clock::now() - kGrace;
    const auto worth = [](const Terminal& terminal) {
        return std::tuple(terminal.isProven, !terminal.isUnwelcome, terminal.since);
    };
    QTcpSocket* spared = nullptr;
    for (auto each = terminals_.cbegin(); each != terminals_.cend(); ++each) {
        if (each->since > latest) continue;
        if (spared == nullptr || worth(*each) < worth(*terminals_.constFind(spared))) spared = each.key();
    }
    if (spared == nullptr) return false;
    complain(u"too many connections at once: one from %1 makes way"_s.arg(terminals_[spared].address));
    terminals_.remove(spared);
    spared->abort();
    return true;
}

/// A flood shall not become one of the log.
void Server::complain(const QString& text) {
    if (complaints_.take({})) platform::trace(text);
}

void Server::read(QTcpSocket* socket) {
    while (terminals_.contains(socket) && socket->bytesAvailable() > 0) {
        Terminal& terminal = terminals_[socket];
        terminal.reader.add(socket->read(kFrameLimit));
        for (;;) {
            OpenedRequest request;
            const RequestReader::Result result = terminal.reader.next(ledger_.keys().box, folder_, &request);
            if (result == RequestReader::Result::Incomplete) break;
            if (result == RequestReader::Result::Fault) {
                complain(u"%1 gets no answer: %2"_s.arg(terminal.address, terminal.reader.fault()));
                return socket->abort();
            }
            if (!terminal.isProven) connections_.giveBack(terminal.address);
            terminal.isProven = true;
            terminal.since = std::chrono::steady_clock::now();
            if (!requestsOf_.take(terminal.reader.terminal())) {
                complain(u"terminal %1 asks too often"_s.arg(terminal.reader.terminal()));
                return socket->abort();
            }
            serve(socket, request);
            if (socket->state() != QAbstractSocket::ConnectedState) return;
            terminal.idle->start(kIdleTime);
        }
    }
}

void Server::serve(QTcpSocket* socket, const OpenedRequest& request) {
    const std::optional<Fault> fault = faultFor(faults_, ++requests_);
    const auto isFault = [&](Misbehaviour misbehaviour) {
        return fault && fault->misbehaviour == misbehaviour;
    };
    const bool isSilenced = !silencer_.isEmpty() && QFile::exists(silencer_);
    if (isSilenced || isFault(Misbehaviour::Silent)) return;
    if (isFault(Misbehaviour::Close)) return socket->abort();

    const Manner manner = isFault(Misbehaviour::Refuse)    ? Manner::Refusing
                          : isFault(Misbehaviour::OldHost) ? Manner::Old
                                                           : Manner::Usual;
    const platform::SecureBytes fields = ledger_.answer(request, manner);
    const auto sealed = sealReply(request.number, fields, request.replyKey, ledger_.keys().box);
    if (!sealed || isFault(Misbehaviour::ApproveThenClose)) return socket->abort();
    reply(socket, {FrameKind::Reply, request.number, *sealed}, fault);
}

void Server::reply(QTcpSocket* socket, const Frame& reply, const std::optional<Fault>& fault) {
    if (socket->bytesToWrite() > kMostUnread) {
        complain(u"a terminal does not read its answers"_s);
        return socket->abort();
    }
    const QByteArray bytes = encodeFrame(reply);
    if (!fault) {
        socket->write(bytes);
        return;
    }
    switch (fault->misbehaviour) {
        case Misbehaviour::Late:
            QTimer::singleShot(fault->delay, socket, [socket, bytes] { socket->write(bytes); });
            break;
        case Misbehaviour::Split:
            sendInPieces(socket, bytes);
            break;
        case Misbehaviour::Double:
            socket->write(bytes + bytes);
            break;
        case Misbehaviour::Stray: {
            Frame other = reply;
            other.number[0] ^= 1;
            socket->write(encodeFrame(other) + bytes);
            break;
        }
        case Misbehaviour::Truncate:
            socket->write(bytes.first(bytes.size() / 2));
            socket->disconnectFromHost();
            break;
        case Misbehaviour::Oversize: {
            QByteArray oversized(kFrameLimit + 1, '\0');
            qToBigEndian(quint32(oversized.size() - 4), oversized.data());
            socket->write(oversized);
            break;
        }
        case Misbehaviour::Garbage:
            socket->write("HTTP/1.1 400 Bad Request\r\n\r\n");
            break;
        case Misbehaviour::BadMac: {
            Frame changed = reply;
            changed.sealed.back() = char(changed.sealed.back() ^ 1);
            socket->write(encodeFrame(changed));
            break;
        }
        case Misbehaviour::Refuse:
        case Misbehaviour::OldHost:
            socket->write(bytes);
            break;
        case Misbehaviour::Close:
        case Misbehaviour::Silent:
        case Misbehaviour::ApproveThenClose:
            break;  // These get no answer at all.
    }
}

}  // namespace cardhost
