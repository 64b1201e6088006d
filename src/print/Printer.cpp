#include "print/Printer.h"

#include <QString>

#include "platform/termdev/TermDev.h"

namespace print {
namespace {

/// Calls the operation bound at `ordinal`; 0 when the library does not have it with these arguments.
template <typename... Arguments>
int call(int ordinal, Arguments... arguments) {
    const platform::termdev::Operation bound = platform::termdev::operation(ordinal);
    const auto* operation = std::get_if<int (*)(Arguments...)>(&bound);
    return operation ? (*operation)(arguments...) : 0;
}

}  // namespace

int DeviceOpen() {
    return call(1);
}

int DeviceClose() {
    return call(2);
}

int PrinterInit() {
    return call(26);
}

int PrinterSetSize(int mode) {
    return call(10, mode);
}

int PrinterPrint(QStringView text) {
    const QString terminated = text.toString();
    return call(11, reinterpret_cast<const char16_t*>(terminated.utf16()));
}

int PrinterFeed(int lines) {
    return call(16, lines);
}

}  // namespace print
