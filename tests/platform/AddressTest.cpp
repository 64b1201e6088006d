#include "platform/Address.h"

#include <gtest/gtest.h>

#include "support/PrintQt.h"

namespace platform {
namespace {

TEST(Address, NumbersWithAPortOrWithout) {
    const struct {
        QStringView text;
        QStringView read;  ///< Empty for none.
    } cases[] = {
        {u"10.1.2.3", u"10.1.2.3:0"},
        {u"10.1.2.3:9100", u"10.1.2.3:9100"},
        {u"::1", u"[::1]:0"},
        {u"[::1]", u"[::1]:0"},
        {u"[FD00:0::2]:40001", u"[fd00::2]:40001"},
        {u"[fe80::1%eth0]:1", u"[fe80::1%eth0]:1"},
        {u"", u""},
        {u"printer", u""},
        {u"127.1", u""},
        {u"010.1.2.3", u""},
        {u"0.0.0.0", u""},
        {u"::", u""},
        {u"10.1.2.3:", u""},
        {u"10.1.2.3:0", u""},
        {u"10.1.2.3:65536", u""},
        {u"[::1", u""},
        {u"[::1]9100", u""},
        {u"[::1]:", u""},
        {u"[10.1.2.3", u""},
    };
    for (const auto& [text, read] : cases) {
        const auto endpoint = parseEndpoint(text);
        const QString found = endpoint ? endpointText(endpoint->address, endpoint->port) : QString();
        EXPECT_EQ(found, read) << text.toUtf8().constData();
    }
}

}  // namespace
}  // namespace platform
