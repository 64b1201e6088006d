#include "platform/Settings.h"

#include <gtest/gtest.h>

#include "support/TestDevice.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(Settings, GoodValuesAreTakenAndBadOnesTold) {
    test::TestDevice device;
    EXPECT_TRUE(readSettings().complaints.isEmpty()) << "no file, no complaint";

    device.writeFile(
        u"\\rovana.conf",
        "# the van\n[printer]\ntype = serial\ndevice = /dev/ttyS7\nspeed=19200\ncut = Partial\n"
        "ksx1001 = yes\n[Reader]\ntype = evdev\ndevice = \"/dev/input/by-id/a b\"\ntrack2 = ;\n"
        "track3 = ;+\ntracks = 3\n[screen]\nscale = 1.5\n[sound]\non = no\n[log]\nkilobytes = 64\n");
    Settings settings = readSettings();
    EXPECT_EQ(settings.complaints.join(u'\n').toStdString(), "");
    const PrinterSettings& printer = settings.printer;
    EXPECT_TRUE(printer.kind == PrinterSettings::Kind::Serial && printer.device == u"/dev/ttyS7" &&
                printer.line.speed == 19200 && printer.cut == PrinterSettings::Cut::Partial &&
                printer.isKsx1001Only);
    const ReaderSettings& reader = settings.reader;
    EXPECT_TRUE(reader.kind == ReaderSettings::Kind::Evdev && reader.device == u"/dev/input/by-id/a b" &&
                reader.track3Starts == u";+" && reader.tracks == ReaderSettings::Tracks::Only3);
    EXPECT_EQ(reader.track2Starts, u";"_s) << "a semicolon is a value here";
    EXPECT_TRUE(settings.scale == 1.5 && settings.logKilobytes == 64 && !settings.hasSound);

    device.writeFile(u"\\rovana.conf", "[printer]\ntype = tcp\naddress = [FD00:0::2%eth0]:9101\n");
    settings = readSettings();
    EXPECT_EQ(settings.complaints.join(u'\n').toStdString(), "");
    EXPECT_EQ(settings.printer.address, u"fd00::2%eth0"_s);
    EXPECT_EQ(settings.printer.port, 9101);

    const QByteArray bad[] = {"[printer]\nspeed = 9601",
                              "[printer]\ntype = laser",
                              "[printer]\nport = 70000",
                              "[printer]\naddress = a.b",
                              "[printer]\naddress = 0.0.0.0",
                              "[printer]\naddress = 10.0.0.9:0",
                              "[printer]\naddress = [fd00::2",
                              "[printer]\naddress = [fd00::2]x:91",
                              "[printer]\naddress = fd00::2%",
                              "[printer]\naddress = 127.1",
                              "[printer]\naddress = 10.0.0.9:99999",
                              "[printer]\ntype = tcp",
                              "[reader]\ntype = serial",
                              "[reader]\ntrack3 = 12",
                              "[screen]\nscale = nan",
                              "[log]\nkilobytes = -1",
                              "[log]\nsize = 5",
                              "[printer]\ndevice = lp0",
                              "[printer]\nport = 9100\nport = 9100",
                              '#' + QByteArray(64 * 1024, '-'),
                              "nonsense"};
    for (const QByteArray& text : bad) {
        device.writeFile(u"\\rovana.conf", text + '\n');
        settings = readSettings();
        EXPECT_EQ(settings.complaints.size(), 1) << text.toStdString();
        EXPECT_TRUE(settings.printer.kind == PrinterSettings::Kind::Roll &&
                    settings.printer.line.speed == 9600 && settings.printer.port == 9100 &&
                    settings.reader.kind == ReaderSettings::Kind::None && settings.scale == 0)
            << text.toStdString();
    }
}

}  // namespace
}  // namespace platform
