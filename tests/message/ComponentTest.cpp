#include <gtest/gtest.h>
#include <sys/socket.h>

#include <QTcpServer>
#include <QTcpSocket>

#include "platform/message/Component.h"
#include "platform/message/SavedValues.h"
#include "platform/message/Seal.h"
#include "rovana-cardhost/HostSeal.h"
#include "support/Exchange.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace cardhost;
using namespace platform::message;

const QString kCardData = QString(104, u'7');
const QString kNoAnswer = u"communicating sent error ended"_s;

class ComponentTest : public ::testing::Test {
  protected:
    ComponentTest() {
        EXPECT_EQ(startCipher(), kDone);
        EXPECT_EQ(makeKeyPair(&host), kDone);
        EXPECT_TRUE(writeHostKey(host.publicKey));
        SigningKey own;
        EXPECT_EQ(makeSigningKey(&own), kDone);
        EXPECT_TRUE(writeSavedValues(
            {{u"101"_s, u"4711"_s}, {u"221"_s, savedAddress(u"127.0.0.1"_s)}, {u"222"_s, u"8480"_s}}));
        EXPECT_TRUE(listener.listen(QHostAddress::LocalHost));
    }

    quint16 port() const { return listener.serverPort(); }
    QTcpSocket* take() {
        EXPECT_TRUE(listener.hasPendingConnections() || listener.waitForNewConnection(5000));
        return listener.nextPendingConnection();
    }
    ~ComponentTest() override { Component::setTimeOutUnit(std::chrono::seconds(1)); }

    TestDevice device;
    KeyPair host;
    QTcpServer listener;  ///< Takes connections and never answers.
    Exchange terminal;
};

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
        QTcpSocket* const taken = take();
        const linger atOnce{1, 0};
        ::setsockopt(int(taken->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        taken->abort();
    });
    EXPECT_EQ(terminal.wait(), u"communicating error ended");
    EXPECT_TRUE(isHanded);
    EXPECT_FALSE(terminal.component.hasSent());
}

TEST_F(ComponentTest, OneExchangeRunsAtATimeAndARefusedConnectionIsAnEvent) {
    Component::setTimeOutUnit(std::chrono::milliseconds(20));
    for (const QString& track : {QString(), QString(105, u'0')})
        EXPECT_EQ(terminal.payment(track, u"1234"), kBadInput);
    ASSERT_EQ(terminal.payment(kCardData, u"1234"), kDone);
    ASSERT_EQ(terminal.commun(port(), 2), kDone);
    EXPECT_EQ(terminal.call(25, {u"127.0.0.1", qint16(port()), qint16(1), qint16(0)}), kLinkFailed);
    EXPECT_EQ(terminal.header(u"0100"), kBadInput) << "an exchange is under way";
    EXPECT_EQ(terminal.wait(), kNoAnswer);
    const quint16 closed = port();
    listener.close();
    ASSERT_EQ(terminal.payment(kCardData, u"1234"), kDone) << "ready again";
    EXPECT_EQ(terminal.commun(closed), kDone);
    EXPECT_EQ(terminal.wait(), u"communicating ksnet -500 ended");
}

TEST_F(ComponentTest, OnlyAReplyToTheRequestIsRead) {
    const struct {
        QStringView kind, type;  ///< Of the reply; without a kind the request itself comes back.
        bool hasCode;
    } cases[] = {{u"0300", u"0210", true},
                 {u"0100", u"0210", true},
                 {u"0300", u"0200", true},
                 {u"0300", u"0210", false},
                 {u"", u"", false}};
    for (const auto& [kind, type, hasCode] : cases) {
        const bool isReply = kind == u"0300" && type == u"0210" && hasCode;
        const auto replyTo = [&](const OpenedRequest& request) {
            FieldWriter fields;
            fields.add(kMessageTypeField, type);
            fields.add(kMessageKindField, kind);
            if (hasCode) fields.add(kResponseCodeField, u"0000");
            return encodeFrame({FrameKind::Reply, request.number,
                                *sealReply(request.number, fields.bytes(), request.replyKey, host)});
        };
        ASSERT_EQ(terminal.balance(kCardData, u"1234"), kDone);
        ASSERT_EQ(terminal.commun(port()), kDone);
        QTcpSocket* const taken = take();
        FrameReader reader;
        QObject::connect(taken, &QTcpSocket::readyRead, taken, [&] {
            reader.add(taken->readAll());
            if (Frame frame; reader.next(&frame) == FrameReader::Result::Complete)
                taken->write(kind.isEmpty() ? encodeFrame(frame) : replyTo(*openRequest(frame.sealed, host)));
        });
        EXPECT_EQ(terminal.wait(), isReply ? u"communicating sent receiving ended"_s : kNoAnswer);
        EXPECT_EQ(terminal.field(1102), isReply ? u"0000"_s : u""_s);
        EXPECT_EQ(terminal.call(14), isReply ? kDone : kBadInput);
        EXPECT_EQ(terminal.call(11), kBadInput) << "no payment's reply";
        terminal.header(u"0100");
        EXPECT_EQ(terminal.field(1102), u"") << "the fields of a reply end with the next request";
    }
}

}  // namespace
}  // namespace test
