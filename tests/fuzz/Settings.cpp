#include "platform/Settings.h"

#include <QTextStream>
#include <algorithm>

#include "fuzz/Target.h"
#include "platform/message/SavedValues.h"

using namespace platform;
using fuzz::require;

namespace {

const char* const kPrinters[] = {"roll", "file", "serial", "tcp"};
const char* const kReaders[] = {"none", "serial", "evdev", "hidraw"};
const char* const kTracks[] = {"both", "2", "3"};
const char* const kCuts[] = {"none", "full", "partial", "feed"};
const char* const kFlows[] = {"none", "hardware", "software"};
const char* const kParities[] = {"none", "even", "odd"};

void write(QTextStream& out, const SerialMode& line) {
    require(line.speed >= 1200 && line.speed <= 115200, "a line has a speed");
    out << "speed=" << line.speed << "\nflow=" << kFlows[int(line.flow)]
        << "\nparity=" << kParities[int(line.parity)] << '\n';
}

/// The settings as a file says them.
QString write(const Settings& settings) {
    QString text;
    QTextStream out(&text);
    const PrinterSettings& printer = settings.printer;
    out << "[printer]\ntype=" << kPrinters[int(printer.kind)] << "\nport=" << printer.port
        << "\ncut=" << kCuts[int(printer.cut)] << "\nksx1001=" << (printer.isKsx1001Only ? "yes" : "no")
        << '\n';
    if (!printer.device.isEmpty()) out << "device=\"" << printer.device << "\"\n";
    if (!printer.address.isEmpty()) out << "address=" << printer.address << '\n';
    write(out, printer.line);
    const ReaderSettings& reader = settings.reader;
    out << "[reader]\ntype=" << kReaders[int(reader.kind)] << "\ntracks=" << kTracks[int(reader.tracks)]
        << "\ntrack2=\"" << reader.track2Starts << "\"\ntrack3=\"" << reader.track3Starts << "\"\n";
    if (!reader.device.isEmpty()) out << "device=\"" << reader.device << "\"\n";
    write(out, reader.line);
    if (settings.scale != 0) out << "[screen]\nscale=" << QString::number(settings.scale, 'g', 17) << '\n';
    out << "[log]\nkilobytes=" << settings.logKilobytes << "\n[roll]\nkilobytes=" << settings.rollKilobytes
        << '\n';
    return text;
}

void readConfiguration(QByteArrayView content) {
    fuzz::device().writeFile(u"\\rovana.conf", content.toByteArray());
    const Settings settings = readSettings();
    // Every line may be wrong, and both devices may lack their names.
    require(settings.complaints.size() <= content.count('\n') + 3, "a line has one complaint at most");
    const PrinterSettings& printer = settings.printer;
    const ReaderSettings& reader = settings.reader;
    require(printer.kind == PrinterSettings::Kind::Roll ||
                !(printer.kind == PrinterSettings::Kind::Tcp ? printer.address : printer.device).isEmpty(),
            "a printer has its name");
    require(reader.kind == ReaderSettings::Kind::None || !reader.device.isEmpty(), "a reader has its name");
    require(printer.port > 0 && printer.port <= 65535, "a port is one");
    require(settings.scale == 0 || (settings.scale >= kSmallestScale && settings.scale <= kLargestScale),
            "a scale is within its bounds");
    require(std::min(settings.logKilobytes, settings.rollKilobytes) >= 16, "log and roll have room");

    const QString written = write(settings);
    fuzz::device().writeFile(u"\\rovana.conf", written.toUtf8());
    const Settings again = readSettings();
    require(again.complaints.isEmpty() && write(again) == written, "what is taken can be said");
}

void readSaved(QByteArrayView content) {
    fuzz::device().writeFile(message::kSavedValuesFile, content.toByteArray());
    message::SavedValues values;
    if (message::readSavedValues(&values) != message::kDone) {
        require(values.isEmpty(), "a file that is wrong gives nothing");
        return;
    }
    message::SavedValues again;
    require(message::writeSavedValues(values) && message::readSavedValues(&again) == message::kDone &&
                again == values,
            "values that are read and written are the same");
}

}  // namespace

FUZZ_TARGET(Settings, input) {
    readConfiguration(input);
    readSaved(input);
}
