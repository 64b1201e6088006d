#include "van/screens/HostRequest.h"

#include <gtest/gtest.h>

#include "platform/Address.h"
#include "platform/message/SavedValues.h"
#include "support/PrintQt.h"

namespace {

TEST(HostRequest, TheSavedAddressIsThatOfTheHost) {
    for (const QStringView address : {u"210.11.22.3", u"127.0.0.1", u"fd00::2", u"fe80::1%eth0"}) {
        const auto parsed = platform::parseAddress(address);
        ASSERT_TRUE(parsed);
        EXPECT_EQ(van::hostAddress(platform::message::savedAddress(*parsed)), address);
    }
    EXPECT_EQ(van::hostAddress(u"210011"), u"210.11.0.0");
}

}  // namespace
