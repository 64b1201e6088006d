#include "rovana-cardhost/Server.h"

#include <QFile>
#include <QHostAddress>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>
#include <QtEndian>
#include <algorithm>

#include "platform/Trace.h"
#include "platform/message/Enrolment.h"
#include "platform/message/Fields.h"

namespace cardhost {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using platform::message::Frame;
using platform::message::FrameKind;
using platform::message::FrameReader;
using platform::message::kFrameLimit;

constexpr auto kIdleTime = 60s;
constexpr auto kProofTime = 10s;  ///< For the first request of a connection.
constexpr qsizetype kMostTerminals = 256;
/// A flood of connections must not push an honest one out of the system's own queue.
constexpr int kQueue = 1024;
constexpr qint64 kMostUnread = 4 * kFrameLimit;
constexpr qsizetype kPieceSize = 16;
constexpr auto kPieceTime = 2ms;

/// Sends the bytes piece by piece, each on its own.
void sendInPieces(QTcpSocket* socket, const QByteArray& bytes) {
    socket->write(bytes.first(std::min(kPieceSize, bytes.size())));
    socket->flush();
    if (bytes.size() <= kPieceSize) return;
    QTimer::singleShot(kPieceTime, socket,
                       [socket, rest = bytes.sliced(kPieceSize)] { sendInPieces(socket, rest); });
}

}  // namespace

Server::Server(Ledger& ledger, QString folder, QList<Fault> faults, QObject* parent)
    : QObject(parent),
      ledger_(ledger),
      folder_(std::move(folder)),
      faults_(std::move(faults)),
      strangers_(100, 20),
      requestsOf_(200, 20),
      complaints_(100, 1) {
    listener_.setListenBacklogSize(kQueue);
    listener_.setMaxPendingConnections(kQueue);
    connect(&listener_, &QTcpServer::newConnection, this, &Server::accept);
}

bool Server::listen(quint16 port) {
    return listener_.listen(QHostAddress::LocalHost, port);
}

void Server::accept() {
    while (QTcpSocket* socket = listener_.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QObject::destroyed, this, [this, socket] { terminals_.remove(socket); });
        const QString address = socket->peerAddress().toString();
        if (!strangers_.take(address)) {
            complain(u"too many connections from %1: one is turned away"_s.arg(address));
            socket->abort();
            continue;
        }
        if (terminals_.size() >= kMostTerminals && !makeRoom()) {
            complain(u"too many terminals at once: one is turned away"_s);
            socket->abort();
            continue;
        }
        socket->setReadBufferSize(kFrameLimit);
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        Terminal& terminal = terminals_[socket];
        terminal.address = address;
        terminal.order = ++connections_;
        terminal.idle = new QTimer(socket);
        terminal.idle->setSingleShot(true);
        connect(terminal.idle, &QTimer::timeout, socket, &QTcpSocket::abort);
        terminal.idle->start(kProofTime);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
    }
}

/// Closes the connection that came first of those that have brought no request; false when there is none.
bool Server::makeRoom() {
    QTcpSocket* oldest = nullptr;
    for (auto each = terminals_.cbegin(); each != terminals_.cend(); ++each) {
        if (!each->isProven && (oldest == nullptr || each->order < terminals_[oldest].order))
            oldest = each.key();
    }
    if (oldest == nullptr) return false;
    terminals_.remove(oldest);
    oldest->abort();
    return true;
}

/// A flood shall not become one of the log.
void Server::complain(const QString& text) {
    if (complaints_.take({})) platform::trace(text);
}

/// Whether an enrolled terminal has signed the request and may ask now. The log says why not.
bool Server::isFromTerminal(QTcpSocket* socket, const platform::message::OpenedRequest& request) {
    Terminal& terminal = terminals_[socket];
    const auto fields = platform::message::Fields::parse(request.fields);
    const QString number = fields ? fields->text(platform::message::kTerminalField) : QString();
    const auto key = platform::message::enrolledKey(folder_, number);
    if (!key) {
        const bool isNumber = platform::message::isTerminalNumber(number);
        complain(u"a request from %1 gets no answer: %2"_s.arg(
            terminal.address,
            isNumber ? u"terminal %1 is not enrolled"_s.arg(number) : u"it names no terminal"_s));
        return false;
    }
    if (!isSignedBy(request, *key, ledger_.keys().box.publicKey)) {
        complain(u"a request from %1 gets no answer: terminal %2 has not signed it"_s.arg(terminal.address,
                                                                                          number));
        return false;
    }
    if (!terminal.isProven) strangers_.giveBack(terminal.address);
    terminal.isProven = true;
    if (requestsOf_.take(number)) return true;
    complain(u"terminal %1 asks too often: a request gets no answer"_s.arg(number));
    return false;
}

void Server::read(QTcpSocket* socket) {
    while (terminals_.contains(socket) && socket->bytesAvailable() > 0) {
        FrameReader& reader = terminals_[socket].reader;
        reader.add(socket->read(kFrameLimit));
        for (;;) {
            Frame frame;
            const FrameReader::Result result = reader.next(&frame);
            if (result == FrameReader::Result::Incomplete) break;
            if (result != FrameReader::Result::Complete || frame.kind != FrameKind::Request) {
                complain(result == FrameReader::Result::Complete ? u"a reply came in"_s
                                                                 : describe(result).toString());
                return socket->abort();
            }
            serve(socket, frame);
            if (socket->state() != QAbstractSocket::ConnectedState) return;
            terminals_[socket].idle->start(kIdleTime);
        }
    }
}

void Server::serve(QTcpSocket* socket, const Frame& frame) {
    const auto request = openRequest(frame.sealed, ledger_.keys().box);
    if (!request || request->number != frame.number) {
        // Whoever cannot seal to this host's key cannot read its answer either.
        complain(u"a request is not sealed to this host's key"_s);
        return socket->abort();
    }
    if (!isFromTerminal(socket, *request)) return socket->abort();
    const std::optional<Fault> fault = faultFor(faults_, ++requests_);
    const auto isFault = [&](Misbehaviour misbehaviour) {
        return fault && fault->misbehaviour == misbehaviour;
    };
    const bool isSilenced = !silencer_.isEmpty() && QFile::exists(silencer_);
    if (isSilenced || isFault(Misbehaviour::Silent)) return;
    if (isFault(Misbehaviour::Close)) return socket->abort();

    const platform::SecureBytes fields = ledger_.answer(*request, isFault(Misbehaviour::Refuse));
    const auto sealed = sealReply(request->number, fields, request->replyKey, ledger_.keys().box);
    if (!sealed || isFault(Misbehaviour::ApproveThenClose)) return socket->abort();
    reply(socket, {FrameKind::Reply, request->number, *sealed}, fault);
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
            socket->write(bytes);
            break;
        case Misbehaviour::Close:
        case Misbehaviour::Silent:
        case Misbehaviour::ApproveThenClose:
            break;  // These get no answer at all.
    }
}

}  // namespace cardhost
