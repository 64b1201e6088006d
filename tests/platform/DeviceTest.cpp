#include "platform/Device.h"

#include <gtest/gtest.h>

#include <QDir>

#include "support/PrintQt.h"

namespace platform::device {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(DeviceTest, OptionThenEnvironmentThenApplicationData) {
    const QByteArray before = qgetenv("ROVANA_DEVICE");
    qputenv("ROVANA_DEVICE", "/srv/terminal");
    EXPECT_EQ(choose(u"/mnt/van/"_s), u"/mnt/van"_s);
    EXPECT_EQ(choose(u"van"_s), QDir::currentPath() + u"/van"_s);
    EXPECT_EQ(choose({}), u"/srv/terminal"_s);
    qunsetenv("ROVANA_DEVICE");
    EXPECT_TRUE(choose({}).endsWith(u"/rovana"_s));
    if (!before.isNull()) qputenv("ROVANA_DEVICE", before);
}

}  // namespace
}  // namespace platform::device
