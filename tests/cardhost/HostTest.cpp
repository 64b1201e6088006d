#include <gmock/gmock.h>

#include <QTcpSocket>

#include "desk/demo/DemoCards.h"
#include "platform/WholeFile.h"
#include "platform/message/Component.h"
#include "platform/message/SavedValues.h"
#include "support/Exchange.h"
#include "support/HostProcess.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::message;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr char kGood[] = "communicating sent receiving ended";
constexpr char kBroken[] = "communicating sent error ended";

QString cardData(QStringView name) {
    return desk::track3(*desk::findDemoCard(name)).mid(1, 104);
}
QStringView password(QStringView name) {
    return desk::findDemoCard(name)->password;
}

/// What a payment's reply says, the balance last.
template <typename TextOf>
std::string told(TextOf textOf) {
    QStringList texts;
    for (const quint16 field : {1102, 1203, 1008, 1002, 1103, 1104, 1105, 1106, 1107}) texts << textOf(field);
    return texts.join(u' ').toStdString();
}

class HostTest : public ::testing::Test {
  protected:
    HostTest() { EXPECT_TRUE(writeSavedValues({{u"101"_s, u"4711"_s}})); }
    ~HostTest() override { Component::setTimeOutUnit(std::chrono::seconds(1)); }

    QString pay(QStringView card, QStringView amount = u"11000") {
        EXPECT_EQ(terminal.payment(cardData(card), password(card), amount), kDone);
        return terminal.run(host.port());
    }
    std::string told() {
        return test::told([this](quint16 field) { return terminal.field(field); });
    }

    /// The account's balance as another terminal is told.
    QString balance(QStringView card) {
        Exchange other;
        EXPECT_EQ(other.balance(cardData(card), password(card)), kDone);
        EXPECT_EQ(other.run(host.port()), QString::fromLatin1(kGood));
        return (other.field(1103) == u"0" ? u""_s : u"-"_s) + other.field(1109);
    }

    TestDevice device;
    HostProcess host;
    Exchange terminal;
};

TEST_F(HostTest, AnApprovedPaymentIsToldChargedAndFoundAgain) {
    host.start({u"--clock"_s, u"2026-11-21 09:05"_s});
    const char approved[] = "0000 정상처리 000000000001 JB0000000001 0 11000 16 10984 99989000";
    ASSERT_EQ(pay(u"good"), QString::fromLatin1(kGood));
    EXPECT_EQ(told(), approved);
    EXPECT_EQ(balance(u"good"), u"99989000");

    // The balance inquiry made the host's second exchange; the answer is still about the first.
    ASSERT_EQ(terminal.previous(), kDone);
    ASSERT_EQ(terminal.run(host.port()), QString::fromLatin1(kGood));
    EXPECT_EQ(told(), approved);
    EXPECT_EQ(terminal.call(12), kDone);
    EXPECT_EQ(terminal.call(11), kBadInput);
}

TEST_F(HostTest, RefusalsChargeNothingAndTheNextPaymentIsApproved) {
    host.start();
    const struct {
        QStringView card, password, amount;
        const char* told;
    } cases[] = {
        {u"unknown", u"9999", u"1000", "0011 미등록카드  "},
        {u"good", u"4321", u"1000", "0012 비밀번호오류  "},
        {u"poor", u"1111", u"1001", "0013 잔액부족  "},
        {u"overdrawn", u"3333", u"1", "0013 잔액부족  "},
        {u"limited", u"2222", u"10001", "0014 한도초과  "},
        {u"good", u"1234", u"0", "0015 거래금액오류  "},
        {u"good", u"1234", u"1000000000001", "0015 거래금액오류  "},
    };
    // A refusal is an answer, without a transaction's number.
    for (const auto& [card, keyed, amount, text] : cases) {
        ASSERT_EQ(terminal.payment(cardData(card), keyed, amount), kDone);
        ASSERT_EQ(terminal.run(host.port()), QString::fromLatin1(kGood));
        EXPECT_THAT(told(), StartsWith(text));
    }
    ASSERT_EQ(terminal.previous(), kDone);
    terminal.run(host.port());
    EXPECT_EQ(terminal.field(1102), u"0016") << "nothing was approved yet";

    for (const char* code : {"0012", "0012", "0012", "0012", "0012", "0020"}) {
        terminal.payment(cardData(u"second"), u"0000", u"1");
        terminal.run(host.port());
        EXPECT_THAT(told(), StartsWith(code));
    }
    pay(u"second", u"1");
    EXPECT_EQ(terminal.field(1102), u"0020") << "the right password comes too late";
    pay(u"limited", u"10000");
    EXPECT_EQ(terminal.field(1102), u"0000") << "exactly the limit";
    pay(u"poor", u"1000");
    EXPECT_EQ(terminal.field(1102), u"0000") << "exactly the balance";
    EXPECT_EQ(balance(u"poor"), u"0");
    EXPECT_EQ(balance(u"good"), u"100000000");
}

TEST_F(HostTest, EveryFaultIsADefinedEventAndLeavesNothingBehind) {
    Component::setTimeOutUnit(std::chrono::milliseconds(20));
    const struct {
        const char* fault;
        const char* events;
        const char* code;
        bool isCharged;
    } cases[] = {
        {"refuse", kGood, "0099", false},
        {"close", kBroken, "", false},
        {"silent", kBroken, "", false},
        {"late 1.5", kBroken, "", true},
        {"late 0.1", kGood, "0000", true},
        {"split", kGood, "0000", true},
        {"double", kGood, "0000", true},
        {"stray", kGood, "0000", true},
        {"truncate", kBroken, "", true},
        {"oversize", kBroken, "", true},
        {"garbage", kBroken, "", true},
        {"badmac", kBroken, "", true},
        {"approve-then-close", kBroken, "", true},
    };
    qint64 expected = 100'000'000;
    for (const auto& [fault, events, code, isCharged] : cases) {
        host.start({u"--fault"_s, QString::fromLatin1(fault) + u"@1"_s});
        EXPECT_EQ(pay(u"good", u"1000"), QString::fromLatin1(events)) << fault;
        EXPECT_EQ(terminal.field(1102), QString::fromLatin1(code)) << fault;
        expected -= isCharged ? 1000 : 0;
        EXPECT_EQ(balance(u"good"), QString::number(expected)) << fault;
        EXPECT_EQ(pay(u"good", u"2000"), QString::fromLatin1(kGood)) << "after " << fault;
        EXPECT_EQ(terminal.field(1102), u"0000") << "after " << fault;
        EXPECT_EQ(terminal.field(1104), u"2000") << "after " << fault;
        expected -= 2000;
        host.stop();
    }
}

struct Request {
    Request(QStringView kind, QStringView terminalNumber, const QList<QStringView>& parameters = {}) {
        EXPECT_EQ(readHostKey(&hostKey), kDone);
        EXPECT_EQ(makeKeyPair(&replyKey), kDone);
        EXPECT_EQ(readSigningKey(&signer), kDone);
        number = makeMessageNumber();
        quint16 field = 1;
        for (const QStringView text : {u"JB", u"84", u"00", u"1234567890", u"    ", u"0200"})
            fields.add(field++, text);
        fields.add(field++, kind);
        fields.add(field++, terminalNumber);
        field = kFirstParameterField;
        for (const QStringView text : parameters) fields.add(field++, text);
    }
    static Request payment(QStringView amount, QStringView kind = u"0100",
                           QStringView terminalNumber = u"99") {
        const QString card = cardData(u"good");
        return {
            kind, terminalNumber, {u"123", u"", card, u"1234", u"39", u"0", u"0", u"0", u"0", u"0", amount}};
    }
    static Request question(QStringView asked, QStringView terminalNumber = u"99") {
        Request request(u"0600", terminalNumber);
        request.fields.add(kAskedNumberField, asked);
        return request;
    }

    QByteArray frame() const {
        return encodeFrame({FrameKind::Request, number,
                            *sealRequest(number, replyKey.publicKey, fields.bytes(), hostKey, signer)});
    }
    /// What the host answers to `frames` of it, the last; nothing when it closes the line.
    std::optional<Fields> askedAt(quint16 port, int frames = 1) const {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port);
        EXPECT_TRUE(socket.waitForConnected(5000));
        socket.write(frame().repeated(frames));
        FrameReader reader;
        std::optional<Fields> answer;
        for (Frame reply; frames > 0; --frames) {
            while (reader.next(&reply) != FrameReader::Result::Complete) {
                if (!socket.waitForReadyRead(5000)) return std::nullopt;
                reader.add(socket.readAll());
            }
            EXPECT_EQ(reply.number, number);
            auto opened = openReply(reply.sealed, number, hostKey, replyKey.secretKey);
            EXPECT_TRUE(opened);
            answer = Fields::parse(std::move(*opened));
        }
        return answer;
    }

    PublicKey hostKey{};
    KeyPair replyKey;
    SigningKey signer;
    MessageNumber number{};
    FieldWriter fields;
};

TEST_F(HostTest, ARepeatedMessageNumberGetsTheSameAnswerAcrossRestarts) {
    host.start();
    Request request = Request::payment(u"1000");
    EXPECT_EQ(request.askedAt(host.port(), 2)->text(1008), u"000000000001") << "joined with the first";
    host.stop();
    host.start();
    ASSERT_EQ(makeKeyPair(&request.replyKey), kDone);
    EXPECT_EQ(request.askedAt(host.port())->text(1008), u"000000000001") << "with another reply key";
    EXPECT_EQ(balance(u"good"), u"99999000") << "charged once";

    Request other = Request::payment(u"2000");
    other.number = request.number;
    EXPECT_EQ(other.askedAt(host.port())->text(1102), u"0017") << "the number with another content";
    EXPECT_EQ(Request::payment(u"2000", u"0999").askedAt(host.port())->text(1102), u"0018") << "no such kind";
    EXPECT_EQ(balance(u"good"), u"99999000");
}

TEST_F(HostTest, TellsWhatBecameOfAPaymentAndRefusesOneThatItDeclaredUnknown) {
    host.start();
    const Request paid = Request::payment(u"1000");
    const Request refused = Request::payment(u"0");
    const Request lost = Request::payment(u"2000");
    const auto answerTo = [&](const Request& request) {
        const auto reply = request.askedAt(host.port());
        return test::told([&](quint16 field) { return reply->text(field); });
    };
    const std::string approval = answerTo(paid);
    const std::string refusal = answerTo(refused);
    EXPECT_THAT(approval, StartsWith("0000 "));
    EXPECT_THAT(refusal, StartsWith("0015 "));
    const auto ask = [&](const Request& about) {
        const Request question = Request::question(toText(about.number).toUpper());
        EXPECT_EQ(question.askedAt(host.port())->text(1131).toLower(), toText(about.number));
        return answerTo(question);
    };
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(ask(paid), approval);
        EXPECT_EQ(ask(refused), refusal);
        EXPECT_THAT(ask(lost), StartsWith("0019 해당거래없음  JB"));
        EXPECT_THAT(answerTo(lost), StartsWith("0017")) << "came after it was declared unknown";
        host.stop();
        host.start();
    }
    EXPECT_EQ(balance(u"good"), u"99999000");

    // Questions that are none: nothing is told, and nobody's payment is refused for them.
    const Request later = Request::payment(u"3000");
    EXPECT_THAT(answerTo(later), StartsWith("0000"));
    for (const Request& question :
         {Request::question(toText(later.number), u"98"), Request::question(toText(paid.number).chopped(1)),
          Request::question(toText(Request::question(u"").number).replace(0, 1, u'g'))}) {
        const auto reply = question.askedAt(host.port());
        EXPECT_EQ(reply->text(1102), u"0018");
        EXPECT_FALSE(reply->has(1131) || reply->has(1008));
    }
    // Nor does another terminal's payment count as one's own.
    EXPECT_THAT(answerTo(Request(u"0600", u"98")), StartsWith("0016"));
    const QString today = QDate::currentDate().toString(u"yyyyMMdd");
    for (const auto& [number, payments] : {std::pair{u"99", u"2"}, {u"98", u"0"}})
        EXPECT_EQ(
            Request(u"0800", number, {u"183000", today}).askedAt(host.port())->text(kTransferCountField),
            payments);
}

TEST_F(HostTest, OnlyAnEnrolledTerminalGetsAnAnswer) {
    host.start();
    Request forged = Request::payment(u"1000");
    forged.signer = signingKeyFrom(platform::SecureBytes(crypto_sign_SEEDBYTES, 9));
    for (const Request& request :
         {forged, Request::payment(u"1000", u"0100", u"97"), Request::payment(u"1000", u"0100", u"../99")})
        EXPECT_FALSE(request.askedAt(host.port()));
    const auto log = platform::readWholeFile(host.folder() + u"/rovana.log"_s);
    for (const char* text : {"terminal 99 is not signed", "terminal 97 is not enrolled", "names no terminal"})
        EXPECT_THAT(log->toStdString(), HasSubstr(text));
    EXPECT_EQ(balance(u"good"), u"100000000") << "none of them was charged";
}

}  // namespace
}  // namespace test
