#pragma once

#include <QString>

/// Opens the devices of the terminal without ever waiting for one; they are closed in a program that this one
/// starts.
namespace platform::termdev {

/// A non-blocking descriptor; `flags` are those of open(2) that say what is done with the device. -1, with
/// errno saying why, when it cannot be opened; the file must exist.
int openDevice(const QString& path, int flags);

}  // namespace platform::termdev
