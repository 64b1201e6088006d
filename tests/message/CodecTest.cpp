#include <gtest/gtest.h>

#include "platform/message/Frame.h"
#include "rovana-cardhost/HostSeal.h"
#include "support/PrintQt.h"

namespace test {
namespace {

using namespace cardhost;
using namespace platform::message;
using platform::SecureBytes;

TEST(FrameTest, HasTheDocumentedLayout) {
    Frame frame{FrameKind::Request, {}, "xyz"};
    frame.number.fill(0xAB);
    EXPECT_EQ(encodeFrame(frame).toHex(), "000000150201" + QByteArray("ab").repeated(16) + "78797a");
}

TEST(SealTest, OnlyTheHostReadsARequest) {
    ASSERT_EQ(startCipher(), kDone);
    KeyPair host;
    KeyPair terminal;
    KeyPair stranger;
    for (KeyPair* each : {&host, &terminal, &stranger}) EXPECT_EQ(makeKeyPair(each), kDone);
    const SigningKey signer = signingKeyFrom(SecureBytes(crypto_sign_SEEDBYTES, 7));
    const MessageNumber number = makeMessageNumber();
    const SecureBytes fields(12, 'w');
    const QByteArray sealed = *sealRequest(number, terminal.publicKey, fields, host.publicKey, signer);
    EXPECT_FALSE(sealed.contains("www"));
    const auto opened = openRequest(sealed, host);
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->replyKey, terminal.publicKey);
    EXPECT_EQ(opened->fields, fields);
    EXPECT_TRUE(isSignedBy(*opened, signer.publicKey, host.publicKey));
    EXPECT_FALSE(isSignedBy(*opened, terminal.publicKey, host.publicKey));
    EXPECT_FALSE(isSignedBy(*opened, signer.publicKey, stranger.publicKey)) << "for another host";
    OpenedRequest changed[] = {*opened, *opened, *opened};
    changed[0].number[0] ^= 1;
    changed[1].replyKey[0] ^= 1;
    changed[2].fields[0] ^= 1;
    for (const OpenedRequest& each : changed)
        EXPECT_FALSE(isSignedBy(each, signer.publicKey, host.publicKey));
    EXPECT_FALSE(openRequest(sealed, stranger));
    EXPECT_FALSE(sealRequest(number, terminal.publicKey, fields, PublicKey{}, signer))
        << "a key that is none";
}

}  // namespace
}  // namespace test
