#include "platform/termdev/Devices.h"

#include <memory>

#include "platform/termdev/EscPos.h"
#include "platform/termdev/PaperRoll.h"
#include "platform/termdev/TermDev.h"

namespace platform::termdev {
namespace {

constexpr qint64 kKilobyte = 1024;

const CardReaderLine*& readerInUse() {
    static const CardReaderLine* reader = nullptr;
    return reader;
}

}  // namespace

std::unique_ptr<Printer> makePrinter(const Settings& settings) {
    if (settings.printer.kind == PrinterSettings::Kind::Roll)
        return std::make_unique<PaperRoll>(settings.rollKilobytes * kKilobyte);
    return std::make_unique<EscPosPrinter>(settings.printer);
}

Devices::Devices(const Settings& settings) {
    setPrinter(makePrinter(settings));
    if (settings.reader.kind == ReaderSettings::Kind::None) return;
    reader_ = std::make_unique<CardReaderLine>(settings.reader);
    readerInUse() = reader_.get();
}

Devices::~Devices() {
    readerInUse() = nullptr;
    setPrinter(nullptr);
}

DeviceStatus readerStatus() {
    return readerInUse() ? readerInUse()->status() : DeviceStatus();
}

}  // namespace platform::termdev
