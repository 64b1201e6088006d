#include <gtest/gtest.h>

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

SecureBytes secure(const QByteArray& bytes) {
    return SecureBytes(bytes.begin(), bytes.end());
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

}  // namespace
}  // namespace test
