#include <gtest/gtest.h>

#include "platform/SecureBytes.h"
#include "platform/message/Component.h"
#include "platform/message/SavedValues.h"
#include "support/Exchange.h"
#include "support/HostProcess.h"
#include "support/MemorySearch.h"
#include "support/TestDevice.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;
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

}  // namespace
}  // namespace test
