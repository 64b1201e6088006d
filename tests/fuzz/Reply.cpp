#include <QTcpServer>
#include <QTcpSocket>
#include <array>

#include "fuzz/Target.h"
#include "platform/message/SavedValues.h"
#include "rovana-cardhost/HostSeal.h"
#include "support/Exchange.h"

using namespace cardhost;
using namespace platform::message;
using fuzz::require;

namespace {

/// A host that answers every request with what it is given.
class Host {
  public:
    Host() {
        SigningKey own;
        require(startCipher() == kDone && makeSigningKey(&own) == kDone && makeKeyPair(&keys_) == kDone &&
                    writeHostKey(keys_.publicKey) &&
                    writeSavedValues({{QStringLiteral("101"), QStringLiteral("4711")}}) &&
                    listener_.listen(QHostAddress::LocalHost),
                "there is a host");
        QObject::connect(&listener_, &QTcpServer::newConnection, [this] {
            QTcpSocket* socket = listener_.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(socket); });
        });
    }

    quint16 port() const { return listener_.serverPort(); }

    enum class Answer { Raw, Sealed, AfterAnother };
    Answer kind = Answer::Raw;
    QByteArrayView content;
    int piece = 1;

  private:
    void read(QTcpSocket* socket) {
        reader_.add(socket->readAll());
        Frame frame;
        if (reader_.next(&frame) != FrameReader::Result::Complete) return;
        reader_ = {};
        QByteArray bytes = content.toByteArray();
        if (kind != Answer::Raw) {
            const auto request = openRequest(frame.sealed, keys_);
            require(request && request->number == frame.number, "the terminal's request opens");
            const auto sealed =
                sealReply(request->number, {content.begin(), content.end()}, request->replyKey, keys_);
            bytes = encodeFrame({FrameKind::Reply, request->number, *sealed});
            if (kind == Answer::AfterAnother) {
                frame.number[0] ^= 1;
                bytes = encodeFrame({FrameKind::Reply, frame.number, content.toByteArray()}) + bytes;
            }
        }
        for (qsizetype at = 0; at < bytes.size(); at += piece) {
            socket->write(bytes.sliced(at, std::min<qsizetype>(piece, bytes.size() - at)));
            socket->flush();
        }
        socket->disconnectFromHost();
    }

    QTcpServer listener_;
    FrameReader reader_;
    KeyPair keys_;
};

}  // namespace

FUZZ_TARGET(Reply, input) {
    fuzz::needEventLoop();
    fuzz::device();
    static Host host;
    const auto kind = std::array{QStringView(u"0100"), QStringView(u"0300"), QStringView(u"0600"),
                                 QStringView(u"0800")}[size_t(fuzz::choose(&input, 4))];
    host.kind = Host::Answer(fuzz::choose(&input, 3));
    host.piece = std::array{100'000, 50, 7, 1'000}[size_t(fuzz::choose(&input, 4))];
    host.content = input.first(std::min<qsizetype>(input.size(), 30'000));

    test::Exchange terminal;
    const QString card(104, u'7');
    const int ready = kind == u"0100"   ? terminal.payment(card, u"1234")
                      : kind == u"0300" ? terminal.balance(card, u"1234")
                      : kind == u"0600" ? terminal.previous()
                                        : terminal.summary(u"20261121");
    require(ready == kDone, "a request is made");
    const QString events = terminal.run(host.port());
    const bool isReply = events == u"communicating sent receiving ended";
    require(isReply || events == u"communicating sent error ended", "an exchange comes to its one end");

    const auto fields = Fields::parse({host.content.begin(), host.content.end()});
    const bool fits = host.kind != Host::Answer::Raw && fields &&
                      fields->text(kMessageTypeField) == kReplyType &&
                      fields->text(kMessageKindField) == kind && fields->has(kResponseCodeField);
    require(isReply == fits, "only the host's reply to this request is one");
    for (const int number : {6, 7, 1008, 1102, 1104, 1109, 1124, 1203}) {
        const bool isThere = isReply && fields->has(quint16(number));
        require(terminal.field(number) == (isThere ? fields->text(quint16(number)) : QString()),
                "a field is as the host wrote it");
    }
    fuzz::settle();
}
