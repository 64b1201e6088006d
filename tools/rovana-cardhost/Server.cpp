#include "rovana-cardhost/Server.h"

#include <QFile>
#include <QHostAddress>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>
#include <QtEndian>

#include "platform/Trace.h"

namespace cardhost {
namespace {

using namespace std::chrono_literals;
using platform::message::Frame;
using platform::message::FrameKind;
using platform::message::FrameReader;
using platform::message::kFrameLimit;

constexpr auto kIdleTime = 60s;
constexpr qsizetype kMostTerminals = 256;
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

Server::Server(Ledger& ledger, QList<Fault> faults, QObject* parent)
    : QObject(parent), ledger_(ledger), faults_(std::move(faults)) {
    connect(&listener_, &QTcpServer::newConnection, this, &Server::accept);
}

bool Server::listen(quint16 port) {
    return listener_.listen(QHostAddress::LocalHost, port);
}

void Server::accept() {
    while (QTcpSocket* socket = listener_.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QObject::destroyed, this, [this, socket] { terminals_.remove(socket); });
        if (terminals_.size() >= kMostTerminals) {
            platform::trace(u"too many terminals at once: one is turned away");
            socket->abort();
            continue;
        }
        socket->setReadBufferSize(kFrameLimit);
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        Terminal& terminal = terminals_[socket];
        terminal.idle = new QTimer(socket);
        terminal.idle->setSingleShot(true);
        connect(terminal.idle, &QTimer::timeout, socket, &QTcpSocket::abort);
        terminal.idle->start(kIdleTime);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
    }
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
                platform::trace(result == FrameReader::Result::Complete ? QStringView(u"a reply came in")
                                                                        : describe(result));
                return socket->abort();
            }
            terminals_[socket].idle->start(kIdleTime);
            serve(socket, frame);
            if (socket->state() != QAbstractSocket::ConnectedState) return;
        }
    }
}

void Server::serve(QTcpSocket* socket, const Frame& frame) {
    const auto request = openRequest(frame.sealed, ledger_.keys().box);
    if (!request || request->number != frame.number) {
        // Whoever cannot seal to this host's key cannot read its answer either.
        platform::trace(u"a request is not sealed to this host's key");
        return socket->abort();
    }
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
        platform::trace(u"a terminal does not read its answers");
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
