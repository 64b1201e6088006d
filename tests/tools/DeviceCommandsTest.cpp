#include <pty.h>
#include <unistd.h>

#include "AdminTest.h"
#include "support/Pump.h"

namespace test {
namespace {

using DeviceCommandsTest = AdminTest;

TEST_F(DeviceCommandsTest, ListTryAndReadTheDevices) {
    needApplication();
    const QString printer = writeFile(u"printer"_s, {});
    int master = -1;
    int slave = -1;
    char reader[64];
    ASSERT_EQ(::openpty(&master, &slave, reader, nullptr, nullptr), 0);
    termios raw{};
    ::cfmakeraw(&raw);
    ::tcsetattr(slave, TCSANOW, &raw);
    const auto configure = [&](const QString& device) {
        writeFile(u"rovana.conf"_s, u"[printer]\ntype=file\ndevice=%1\n[reader]\ntype=serial\ndevice=%2\n"_s
                                        .arg(device, QString::fromLatin1(reader))
                                        .toUtf8());
    };
    configure(printer + u"-gone"_s);
    Ended ended = run({u"devices"_s});
    EXPECT_EQ(ended.exitCode, admin::kFailure);
    EXPECT_TRUE(ended.out.contains(u"-gone\tmissing: "_s)) << narrow(ended.out);
    EXPECT_TRUE(ended.out.contains(QString::fromLatin1(reader) + u"\tthere\n"_s)) << narrow(ended.out);

    configure(printer);
    EXPECT_EQ(run({u"devices"_s}).exitCode, admin::kSuccess);
    const QString noFolder = writeFile(u"spool"_s, {});
    EXPECT_EQ(run({u"print-test"_s}).exitCode, admin::kFailure) << "the page is nowhere";
    QFile::remove(noFolder);
    EXPECT_EQ(run({u"print-test"_s}).exitCode, admin::kSuccess);
    const QByteArray page = readFile(printer);
    EXPECT_TRUE(page.startsWith("\x1B@\x1C&\x1D!\x11")) << page.left(16).toHex(' ').constData();
    EXPECT_TRUE(page.endsWith("\n\x1B\x64\x02"));

    const QByteArray card = ";9409110000000001=99121010000000000?+01" + QByteArray(102, '7') + "?\r";
    ASSERT_EQ(::write(master, card, size_t(card.size())), card.size());
    ended = run({u"swipe-test"_s, u"--seconds"_s, u"5"_s});
    EXPECT_EQ(narrow(ended.out), "card 940911******0001, track 2 of 36 characters, track 3 of 106\n");
    ::close(slave);
    ::close(master);
}

}  // namespace
}  // namespace test
