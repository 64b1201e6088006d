#include <gtest/gtest.h>
#include <sys/socket.h>

#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <functional>
#include <memory>

#include "platform/Device.h"
#include "platform/message/Component.h"
#include "platform/message/SavedValues.h"
#include "platform/message/Seal.h"
#include "rovana-cardhost/HostSeal.h"
#include "support/Exchange.h"
#include "support/PrintQt.h"
#include "support/RecordedTraces.h"
#include "support/TestDevice.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace cardhost;
using namespace platform::message;

const QString kCardData = QString(104, u'7');
constexpr char kNoAnswer[] = "communicating sent error ended";

class ComponentTest : public ::testing::Test {
  protected:
    ComponentTest() {
        EXPECT_EQ(startCipher(), kDone);
        EXPECT_EQ(makeKeyPair(&host), kDone);
        EXPECT_TRUE(writeHostKey(host.publicKey));
        SigningKey own;
        EXPECT_EQ(makeSigningKey(&own), kDone);
        EXPECT_TRUE(writeSavedValues({{u"101"_s, u"4711"_s},
                                      {u"221"_s, savedAddress(QHostAddress(QHostAddress::LocalHost))},
                                      {u"222"_s, u"8480"_s}}));
        EXPECT_TRUE(listener.listen(QHostAddress::LocalHost));
    }

    quint16 port() const { return listener.serverPort(); }
    static QString keyFile() { return platform::device::path(kHostKeyFile); }
    static QString savedFile() { return platform::device::path(kSavedValuesFile); }
    static void replace(const QString& path, const QByteArray& content) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ASSERT_EQ(file.write(content), content.size());
    }

    TestDevice device;
    KeyPair host;
    QTcpServer listener;  ///< Takes connections and never answers.
    Exchange terminal;
};

TEST_F(ComponentTest, SavedValuesAreReadFromTheirFile) {
    const struct {
        QByteArray file;
        QStringView key;
        int status;
        QStringView value;
    } cases[] = {
        {"221=127000000001\n222=8480\n", u"221", kDone, u"127000000001"},
        {"221=127000000001\r\n222=8480", u"222", kDone, u"8480"},
        {"222=8480\n", u"221", kSavedMissing, u""},
        {"222=8480\n", u"2222", kBadInput, u""},
        {"port=8480\n222=8480\n", u"222", kSavedUnreadable, u""},
        {"222=\xff\n", u"222", kSavedUnreadable, u""},
        {"222=" + QByteArray(70'000, '1'), u"222", kSavedUnreadable, u""},
    };
    for (const auto& [file, key, status, value] : cases) {
        replace(savedFile(), file);
        QString read = u"left over"_s;
        EXPECT_EQ(terminal.call(24, {key, &read}), status) << file.left(40).constData();
        EXPECT_EQ(read, value) << file.left(40).constData();
    }
    QString read;
    QFile::remove(savedFile());
    EXPECT_EQ(terminal.call(24, {u"221", &read}), kSavedUnreadable) << "no file";
}

TEST_F(ComponentTest, ParametersAreChecked) {
    const struct {
        QStringView card, password, supply, flag, amount;
        int status;
    } cases[] = {
        {kCardData, u"1234", u"10000", u"0", u"11000", kDone},
        {u"", u"1234", u"10000", u"0", u"11000", kBadInput},
        {kCardData, u"123", u"10000", u"0", u"11000", kBadInput},
        {kCardData, u"1234", u"10,000", u"0", u"11000", kBadInput},
        {kCardData, u"1234", u"10000", u"0", u"1e4", kBadInput},
    };
    for (const auto& [card, password, supply, flag, amount, status] : cases) {
        ASSERT_EQ(terminal.header(u"0150"), kDone);
        EXPECT_EQ(terminal.call(2, {u"123", u"        ", card, password, u"39", supply, u"1000", u"0", flag,
                                    u"0", amount}),
                  status)
            << card.size() << " " << supply.toUtf8().constData() << " " << amount.toUtf8().constData();
    }
    ASSERT_EQ(terminal.header(u"0100"), kDone);
    EXPECT_EQ(terminal.call(6, {u"183000", u"20261121"}), kBadInput) << "a payment's header";
    EXPECT_EQ(terminal.header(u"0200"), kBadInput) << "no such kind";
}

TEST_F(ComponentTest, TheHostsKeyIsNeededAndChecked) {
    const struct {
        const char* what;
        std::function<void()> arrange;
        int status;
    } cases[] = {
        {"missing", [] { QFile::remove(keyFile()); }, kKeyFileMissing},
        {"short", [] { replace(keyFile(), QByteArray(63, 'a')); }, kKeyFileUnreadable},
        {"no digits", [] { replace(keyFile(), QByteArray(64, 'g')); }, kKeyFileUnreadable},
        {"no key of the curve", [] { replace(keyFile(), QByteArray(64, '0')); }, kPublicKeyFailed},
    };
    for (const auto& [what, arrange, status] : cases) {
        arrange();
        EXPECT_EQ(terminal.payment(kCardData, u"1234"), status) << what;
        EXPECT_EQ(terminal.commun(port()), status) << what;
        EXPECT_EQ(terminal.wait(), u"ksnet %1 ended"_s.arg(status)) << what;
        EXPECT_EQ(terminal.balance(kCardData, u"1234"), status) << what;
        EXPECT_EQ(terminal.previous(), kDone) << what;
        EXPECT_EQ(terminal.commun(port()), status) << what << ": sealed by Commun";
        terminal.wait();
    }
    EXPECT_FALSE(listener.hasPendingConnections()) << "nothing was sent without a key";
}

TEST_F(ComponentTest, CommunTellsWhatItCannotStart) {
    const struct {
        QStringView host;
        quint16 port;
        int timeOut;
        int status;
    } cases[] = {
        {u"", 8480, 30, kBadInput},
        {u"localhost", 8480, 30, kBadInput},
        {u"127.0.0.1", 8480, 0, kBadInput},
        {u"255.255.255.255", 8480, 30, kConnectionFailed},
    };
    for (const auto& [hostAddress, hostPort, timeOut, status] : cases) {
        ASSERT_EQ(terminal.payment(kCardData, u"1234"), kDone);
        EXPECT_EQ(terminal.commun(hostPort, timeOut, hostAddress), status)
            << hostAddress.toUtf8().constData();
        EXPECT_TRUE(terminal.events.isEmpty()) << "no event from within the call";
        EXPECT_EQ(terminal.wait(), u"ksnet %1 ended"_s.arg(status)) << hostAddress.toUtf8().constData();
    }
    EXPECT_EQ(terminal.commun(port()), kBadInput) << "a request is sent once";
    terminal.wait();
}

// A connection that breaks before the first write: Qt's buffer holds the request, the system nothing of it.
TEST_F(ComponentTest, WhatTheSystemHasNotTakenHasNotLeft) {
    ASSERT_EQ(terminal.payment(kCardData, u"1234"), kDone);
    ASSERT_EQ(terminal.commun(port()), kDone);
    auto* const socket = terminal.component.findChild<QTcpSocket*>();
    ASSERT_TRUE(socket);
    EXPECT_FALSE(terminal.component.hasSent()) << "nothing waits for a connection";
    EXPECT_EQ(socket->bytesToWrite(), 0);
    bool isHanded = false;
    QObject::connect(socket, &QTcpSocket::connected, &listener, [&] {
        isHanded = socket->bytesToWrite() > 0;
        EXPECT_TRUE(terminal.component.hasSent()) << "it may leave at any moment";
        ASSERT_TRUE(listener.hasPendingConnections() || listener.waitForNewConnection(5000));
        QTcpSocket* const taken = listener.nextPendingConnection();
        const linger atOnce{1, 0};
        ::setsockopt(int(taken->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        taken->abort();
    });
    EXPECT_EQ(terminal.wait(), u"communicating error ended");
    EXPECT_TRUE(isHanded);
    EXPECT_FALSE(terminal.component.hasSent());
}

TEST_F(ComponentTest, ARefusedConnectionIsAnEvent) {
    const quint16 closed = port();
    listener.close();
    ASSERT_EQ(terminal.payment(kCardData, u"1234"), kDone);
    EXPECT_EQ(terminal.commun(closed), kDone);
    EXPECT_EQ(terminal.wait(), u"communicating ksnet -500 ended");
}

TEST_F(ComponentTest, ASilentHostIsGivenUpAndOneExchangeRunsAtATime) {
    Component::setTimeOutUnit(std::chrono::milliseconds(100));
    RecordedTraces traces;
    ASSERT_EQ(terminal.payment(kCardData, u"1234"), kDone);
    ASSERT_EQ(terminal.commun(port(), 2), kDone);
    EXPECT_TRUE(terminal.events.isEmpty());
    EXPECT_EQ(terminal.call(25, {u"127.0.0.1", qint16(port()), qint16(1), qint16(0)}), kLinkFailed);
    EXPECT_EQ(terminal.header(u"0100"), kBadInput) << "an exchange is under way";
    EXPECT_EQ(terminal.wait(), u"communicating sent error ended");
    EXPECT_EQ(traces.take(), QStringList{u"the card host did not answer in time"_s});
    EXPECT_EQ(terminal.header(u"0100"), kDone) << "ready again";
    Component::setTimeOutUnit(std::chrono::seconds(1));
}

TEST_F(ComponentTest, ADroppedComponentEndsItsExchangeQuietly) {
    auto dropped = std::make_unique<Exchange>();
    ASSERT_EQ(dropped->payment(kCardData, u"1234"), kDone);
    ASSERT_EQ(dropped->commun(port()), kDone);
    ASSERT_TRUE(listener.waitForNewConnection(5000));
    QTcpSocket* const taken = listener.nextPendingConnection();
    // From within its own event, as a dialog that is closed would.
    QEventLoop loop;
    QObject::connect(&dropped->component, &Component::messageSent, &loop, [&] { dropped.reset(); });
    QObject::connect(taken, &QTcpSocket::disconnected, &loop, &QEventLoop::quit);
    QTimer::singleShot(5000, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_FALSE(dropped);
    EXPECT_EQ(taken->state(), QAbstractSocket::UnconnectedState) << "the connection is closed with it";
}

/// What a host could send to a request, and what becomes of it.
TEST_F(ComponentTest, OnlyAReplyToTheRequestIsRead) {
    const auto reply = [&](const OpenedRequest& request, QStringView kind, QStringView type, bool hasCode) {
        FieldWriter fields;
        fields.add(kMessageTypeField, type);
        fields.add(kMessageKindField, kind);
        if (hasCode) fields.add(kResponseCodeField, u"0000");
        return encodeFrame({FrameKind::Reply, request.number,
                            *sealReply(request.number, fields.bytes(), request.replyKey, host)});
    };
    const struct {
        const char* what;
        std::function<QByteArray(const OpenedRequest&, const QByteArray& sent)> bytes;
        const char* events;
    } cases[] = {
        {"the reply", [&](auto& request, auto&) { return reply(request, u"0300", u"0210", true); },
         "communicating sent receiving ended"},
        {"of another kind", [&](auto& request, auto&) { return reply(request, u"0100", u"0210", true); },
         kNoAnswer},
        {"a request's type", [&](auto& request, auto&) { return reply(request, u"0300", u"0200", true); },
         kNoAnswer},
        {"no code", [&](auto& request, auto&) { return reply(request, u"0300", u"0210", false); }, kNoAnswer},
        {"the request itself", [&](auto&, auto& sent) { return sent; }, kNoAnswer},
    };
    for (const auto& [what, bytes, events] : cases) {
        ASSERT_EQ(terminal.balance(kCardData, u"1234"), kDone);
        ASSERT_EQ(terminal.commun(port()), kDone);
        ASSERT_TRUE(listener.waitForNewConnection(5000));
        QTcpSocket* const taken = listener.nextPendingConnection();
        FrameReader reader;
        QByteArray sent;
        QObject::connect(taken, &QTcpSocket::readyRead, taken, [&, send = bytes] {
            const QByteArray piece = taken->readAll();
            sent += piece;
            reader.add(piece);
            Frame frame;
            if (reader.next(&frame) == FrameReader::Result::Complete)
                taken->write(send(*openRequest(frame.sealed, host), sent));
        });
        EXPECT_EQ(terminal.wait(), QString::fromLatin1(events)) << what;
        const bool isRead = terminal.events.contains(u"receiving"_s);
        EXPECT_EQ(terminal.field(1102), isRead ? u"0000"_s : u""_s) << what;
        EXPECT_EQ(terminal.call(14), isRead ? kDone : kBadInput) << what;
        EXPECT_EQ(terminal.call(11), kBadInput) << "no payment's reply";
        // The fields of a reply end with the next request.
        terminal.header(u"0100");
        EXPECT_EQ(terminal.call(10), kBadInput);
        EXPECT_EQ(terminal.field(1102), u"");
    }
}

}  // namespace
}  // namespace test
