#include <gtest/gtest.h>

#include "platform/message/Fields.h"
#include "platform/message/Frame.h"
#include "platform/message/Seal.h"
#include "rovana-cardhost/HostSeal.h"
#include "support/PrintQt.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace cardhost;
using namespace platform::message;
using platform::SecureBytes;
using Result = FrameReader::Result;

Frame frameOf(unsigned char number, const QByteArray& sealed, FrameKind kind = FrameKind::Reply) {
    Frame frame{kind, {}, sealed};
    frame.number.fill(number);
    return frame;
}

QByteArray hex(const char* digits) {
    return QByteArray::fromHex(digits);
}

TEST(FrameTest, HasTheDocumentedLayout) {
    EXPECT_EQ(encodeFrame(frameOf(0xAB, "xyz", FrameKind::Request)), hex("00000015"
                                                                         "02"
                                                                         "01"
                                                                         "abababababababababababababababab"
                                                                         "78797a"));
    EXPECT_TRUE(encodeFrame(frameOf(1, QByteArray(kFrameLimit - 21, 'x'))).isEmpty());
    EXPECT_EQ(encodeFrame(frameOf(1, QByteArray(kFrameLimit - 22, 'x'))).size(), kFrameLimit);
}

TEST(FrameTest, FaultsAreToldAtTheFirstByteThatShowsThem) {
    const struct {
        const char* bytes;
        Result result;
    } cases[] = {
        {"", Result::Incomplete},
        {"0000fffd", Result::Oversized},
        {"0000fffc", Result::Incomplete},
        {"00000011", Result::TooShort},
        {"00000012", Result::Incomplete},
        {"0000001201", Result::UnknownVersion},
        {"000000120203", Result::UnknownKind},
        {"000000120202", Result::Incomplete},
    };
    for (const auto& [bytes, result] : cases) {
        FrameReader reader;
        reader.add(hex(bytes));
        Frame frame;
        EXPECT_EQ(reader.next(&frame), result) << bytes;
        reader.add(encodeFrame(frameOf(1, "x")));
        if (result != Result::Incomplete) {
            EXPECT_EQ(reader.next(&frame), result) << bytes << " and a frame";
        }
    }
}

SecureBytes secure(const QByteArray& bytes) {
    return SecureBytes(bytes.begin(), bytes.end());
}

TEST(FieldsTest, RoundTripKeepsEveryText) {
    FieldWriter writer;
    writer.add(1, u"JB");
    writer.add(1203, u"정상처리");
    writer.add(65535, u"");
    EXPECT_EQ(QByteArrayView(writer.bytes()).first(6).toByteArray(), hex("000100024a42"));
    const auto fields = Fields::parse(writer.bytes());
    ASSERT_TRUE(fields);
    EXPECT_EQ(fields->text(1), u"JB");
    EXPECT_EQ(fields->text(1203), u"정상처리");
    EXPECT_TRUE(fields->has(65535));
    EXPECT_EQ(fields->text(2), u"");
}

TEST(FieldsTest, BrokenFieldsAreNone) {
    for (const char* bytes : {"00", "000100", "00010001", "0001000241", "000100014100",
                              "00010000"
                              "00010000",
                              "00010001ff", "00010003eda080", "0001ffff41"}) {
        EXPECT_FALSE(Fields::parse(secure(hex(bytes)))) << bytes;
    }
    EXPECT_TRUE(Fields::parse({}));
}

class SealTest : public ::testing::Test {
  protected:
    SealTest() {
        EXPECT_EQ(startCipher(), kDone);
        EXPECT_EQ(makeKeyPair(&host), kDone);
        EXPECT_EQ(makeKeyPair(&terminal), kDone);
        EXPECT_EQ(makeKeyPair(&stranger), kDone);
        number = makeMessageNumber();
    }

    KeyPair host;
    KeyPair terminal;
    KeyPair stranger;
    const SigningKey signer = signingKeyFrom(SecureBytes(crypto_sign_SEEDBYTES, 7));
    MessageNumber number{};
    const SecureBytes fields = secure("what is said");
};

TEST_F(SealTest, OnlyTheHostReadsARequest) {
    const QByteArray sealed = *sealRequest(number, terminal.publicKey, fields, host.publicKey, signer);
    EXPECT_FALSE(sealed.contains("what"));
    const auto opened = openRequest(sealed, host);
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->replyKey, terminal.publicKey);
    EXPECT_EQ(opened->fields, fields);
    EXPECT_TRUE(isSignedBy(*opened, signer.publicKey, host.publicKey));
    EXPECT_FALSE(isSignedBy(*opened, terminal.publicKey, host.publicKey));
    EXPECT_FALSE(isSignedBy(*opened, signer.publicKey, stranger.publicKey)) << "for another host";
    for (auto change : std::initializer_list<void (*)(OpenedRequest&)>{
             [](OpenedRequest& request) { request.number[0] ^= 1; },
             [](OpenedRequest& request) { request.replyKey[0] ^= 1; },
             [](OpenedRequest& request) { request.fields[0] ^= 1; }}) {
        OpenedRequest changed = *opened;
        change(changed);
        EXPECT_FALSE(isSignedBy(changed, signer.publicKey, host.publicKey));
    }
    EXPECT_FALSE(openRequest(sealed, stranger));
    EXPECT_FALSE(sealRequest(number, terminal.publicKey, fields, PublicKey{}, signer))
        << "a key that is none";
}

TEST_F(SealTest, OnlyTheHostsReplyToThisRequestCounts) {
    const QByteArray sealed = *sealReply(number, fields, terminal.publicKey, host);
    EXPECT_EQ(openReply(sealed, number, host.publicKey, terminal.secretKey), fields);
    EXPECT_FALSE(openReply(sealed, makeMessageNumber(), host.publicKey, terminal.secretKey));
    EXPECT_FALSE(openReply(sealed, number, stranger.publicKey, terminal.secretKey));
    EXPECT_FALSE(openReply(sealed, number, host.publicKey, stranger.secretKey));
    const QByteArray forged = *sealReply(number, fields, terminal.publicKey, stranger);
    EXPECT_FALSE(openReply(forged, number, host.publicKey, terminal.secretKey));
}

}  // namespace
}  // namespace test
