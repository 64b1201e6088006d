#include "rovana-cardhost/Server.h"

#include <QFile>
#include <QHostAddress>
#include <QTcpSocket>
#include <QTimer>
#include <QtEndian>
#include <algorithm>
#include <chrono>

#include "platform/Trace.h"

namespace cardhost {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using platform::message::Frame;
using platform::message::FrameKind;
using platform::message::kFrameLimit;

constexpr auto kProofTime = 10s;  ///< For the first request of a connection.
constexpr auto kIdleTime = 60s;   ///< For the next one.
constexpr qsizetype kMostConnections = 64;
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
    : QObject(parent), ledger_(ledger), folder_(std::move(folder)), faults_(std::move(faults)) {
    connect(&listener_, &QTcpServer::newConnection, this, &Server::accept);
}

bool Server::listen(quint16 port) {
    return listener_.listen(QHostAddress::LocalHost, port);
}

void Server::accept() {
    while (QTcpSocket* const socket = listener_.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        if (terminals_.size() < kMostConnections) {
            admit(socket);
        } else {
            platform::trace(u"too many connections at once"_s);
            socket->abort();
        }
    }
}

void Server::admit(QTcpSocket* socket) {
    connect(socket, &QObject::destroyed, this, [this, socket] { terminals_.remove(socket); });
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
    // Before its first byte is read.
    socket->setReadBufferSize(kFrameLimit);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    QTimer* const idle = terminals_[socket].idle = new QTimer(socket);
    idle->setSingleShot(true);
    connect(idle, &QTimer::timeout, socket, &QTcpSocket::abort);
    idle->start(kProofTime);
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
                platform::trace(u"a connection gets no answer: "_s + terminal.reader.fault());
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

    const platform::SecureBytes fields =
        ledger_.answer(request, isFault(Misbehaviour::Refuse) ? Manner::Refusing : Manner::Usual);
    const auto sealed = sealReply(request.number, fields, request.replyKey, ledger_.keys().box);
    if (!sealed || isFault(Misbehaviour::ApproveThenClose)) return socket->abort();
    reply(socket, {FrameKind::Reply, request.number, *sealed}, fault);
}

void Server::reply(QTcpSocket* socket, const Frame& reply, const std::optional<Fault>& fault) {
    if (socket->bytesToWrite() > kMostUnread) {
        platform::trace(u"a terminal does not read its answers"_s);
        return socket->abort();
    }
    if (fault) {
        replyWrongly(socket, reply, *fault);
    } else {
        socket->write(encodeFrame(reply));
    }
}

void Server::replyWrongly(QTcpSocket* socket, const Frame& reply, const Fault& fault) {
    const QByteArray bytes = encodeFrame(reply);
    switch (fault.misbehaviour) {
        case Misbehaviour::Late:
            QTimer::singleShot(fault.delay, socket, [socket, bytes] { socket->write(bytes); });
            break;
        case Misbehaviour::Split: sendInPieces(socket, bytes); break;
        case Misbehaviour::Double: socket->write(bytes + bytes); break;
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
        case Misbehaviour::Garbage: socket->write("HTTP/1.1 400 Bad Request\r\n\r\n"); break;
        case Misbehaviour::BadMac: {
            Frame changed = reply;
            changed.sealed.back() = char(changed.sealed.back() ^ 1);
            socket->write(encodeFrame(changed));
            break;
        }
        case Misbehaviour::Refuse: socket->write(bytes); break;
        case Misbehaviour::Close:
        case Misbehaviour::Silent:
        case Misbehaviour::ApproveThenClose: break;  // These get no answer at all.
    }
}

}  // namespace cardhost
