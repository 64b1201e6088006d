#include "platform/termdev/TermDev.h"

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
    return printer().open();
}

int deviceClose() {
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

}  // namespace

Operation operation(int ordinal) {
    switch (ordinal) {
        case 1:
            return &deviceOpen;
        case 2:
            return &deviceClose;
        case 10:
            return &printerSetSize;
        case 11:
            return &printerPrint;
        case 16:
            return &printerFeed;
        case 26:
            return &printerInit;
        default:
            return {};
    }
}

void setPrinter(std::unique_ptr<Printer> printer) {
    installed() = std::move(printer);
}

}  // namespace platform::termdev
