#include <gtest/gtest.h>

#include "platform/SecureBytes.h"
#include "platform/message/Component.h"
#include "platform/message/SavedValues.h"
#include "rovana-cardhost/HostSeal.h"
#include "support/Exchange.h"
#include "support/HostProcess.h"
#include "support/MemorySearch.h"
#include "support/TestDevice.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace cardhost;
using namespace platform::message;
using platform::SecureText;

std::vector<std::string> whereOfACard() {
    std::vector<std::string> places = kTrackPiece.places();
    for (const std::string& place : kRarePassword.places()) places.push_back(place);
    return places;
}

class MemoryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!kCanSearchMemory) GTEST_SKIP();
    }
};

TEST_F(MemoryTest, NothingOfACardIsLeftAfterAPayment) {
    const TestDevice device;
    ASSERT_TRUE(writeSavedValues({{u"101"_s, u"4711"_s}}));
    HostProcess host;
    host.start();
    Exchange terminal;
    SecureText track = kTrack.make();
    SecureText password = kRarePassword.make();
    ASSERT_FALSE(kTrackPiece.places().empty()) << "the search finds what is there";
    ASSERT_FALSE(kRarePassword.places().empty());
    ASSERT_EQ(terminal.payment(track.view(), password.view()), kDone);
    ASSERT_EQ(terminal.run(host.port()), u"communicating sent receiving ended");
    ASSERT_EQ(terminal.balance(track.view(), password.view()), kDone);
    track.clear();
    password.clear();
    EXPECT_EQ(whereOfACard(), std::vector<std::string>()) << "a sealed request keeps neither";
    ASSERT_EQ(terminal.run(host.port()), u"communicating sent receiving ended");
    EXPECT_EQ(terminal.field(1102), u"0011");
    EXPECT_EQ(whereOfACard(), std::vector<std::string>());
}

// The host opens requests with the same codec; here in this process.
TEST_F(MemoryTest, NothingOfACardIsLeftAfterARequestWasOpened) {
    KeyPair host;
    KeyPair terminal;
    ASSERT_EQ(startCipher(), kDone);
    ASSERT_EQ(makeKeyPair(&host), kDone);
    ASSERT_EQ(makeKeyPair(&terminal), kDone);
    const MessageNumber number = makeMessageNumber();
    QByteArray sealed;
    {
        const SecureText track = kTrack.make();
        FieldWriter fields;
        for (quint16 field = 1; field < 50; ++field) fields.add(field, track.view());
        sealed = *sealRequest(number, terminal.publicKey, fields.bytes(), host.publicKey,
                              signingKeyFrom(platform::SecureBytes(crypto_sign_SEEDBYTES)));
    }
    EXPECT_EQ(whereOfACard(), std::vector<std::string>());
    {
        const auto opened = openRequest(sealed, host);
        ASSERT_TRUE(opened);
        const auto fields = Fields::parse(opened->fields);
        ASSERT_TRUE(fields && fields->bytes(49)->size() == qsizetype(kTrack.size));
        EXPECT_FALSE(whereOfACard().empty());
    }
    EXPECT_EQ(whereOfACard(), std::vector<std::string>());
}

}  // namespace
}  // namespace test
