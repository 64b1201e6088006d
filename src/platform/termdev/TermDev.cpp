#include "platform/termdev/TermDev.h"

#include "platform/termdev/CardReader.h"
#include "platform/termdev/PaperRoll.h"

namespace platform::termdev {
namespace {

std::unique_ptr<Printer>& installed() {
    static std::unique_ptr<Printer> printer;
    return printer;
}

Printer& printer() {
    if (!installed()) installed() = std::make_unique<PaperRoll>();
    return *installed();
}

int deviceOpen() {
    CardReader::instance().open();
    return printer().open();
}

int deviceClose() {
    CardReader::instance().close();
    return printer().close();
}

int printerInit() {
    return printer().initialise();
}

int printerSetSize(int mode) {
    return printer().setSize(mode);
}

int printerPrint(const char16_t* text) {
    return text ? printer().print(QStringView(text)) : 0;
}

int printerFeed(int lines) {
    return printer().feed(lines);
}

int readerEnable(int isEnabled) {
    CardReader::instance().enable(isEnabled != 0);
    return 1;
}

int readerTrack(int track, char* buffer) {
    return CardReader::instance().readTrack(track, buffer);
}

}  // namespace

Operation operation(int ordinal) {
    switch (ordinal) {
        case 1: return &deviceOpen;
        case 2: return &deviceClose;
        case 6: return &readerTrack;
        case 7: return &readerEnable;
        case 10: return &printerSetSize;
        case 11: return &printerPrint;
        case 16: return &printerFeed;
        case 26: return &printerInit;
        default: return {};
    }
}

void setPrinter(std::unique_ptr<Printer> printer) {
    installed() = std::move(printer);
    statusChanged();
}

DeviceStatus printerStatus() {
    return printer().status();
}

}  // namespace platform::termdev
