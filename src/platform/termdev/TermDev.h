#pragma once

#include <memory>
#include <variant>

#include "platform/termdev/Printer.h"

/// The terminal's device library. It names nothing: what it offers is bound by ordinal.
namespace platform::termdev {

/// One exported operation; empty for an ordinal that the library does not have.
using Operation =
    std::variant<std::monostate, int (*)(), int (*)(int), int (*)(const char16_t*), int (*)(int, char*)>;

/// The operation behind an ordinal: 1 open, 2 close, 26 printer initialise (no argument), 10 size, 16 feed
/// (one integer), 11 print (a NUL-terminated UTF-16 text), 7 card reading on (1) or off (0), 6 the last
/// card's track (2 or 3) into a buffer of 512 bytes.
Operation operation(int ordinal);

/// Puts another printer behind the operations; null brings the paper roll back.
void setPrinter(std::unique_ptr<Printer> printer);

/// How the printer behind the operations is.
DeviceStatus printerStatus();

}  // namespace platform::termdev
