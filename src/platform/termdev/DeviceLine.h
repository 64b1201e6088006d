#pragma once

#include <QString>

#include "platform/Settings.h"

class QSerialPort;

/// Opens the devices of the terminal without ever waiting for one; they are closed in a program that this one
/// starts.
namespace platform::termdev {

/// A non-blocking descriptor; `flags` are those of open(2) that say what is done with the device. -1, with
/// errno saying why, when it cannot be opened; the file must exist.
int openDevice(const QString& path, int flags);

/// Opens the serial line set to `mode`, raw, and this program's alone. Why it cannot; empty when it can.
QString openSerial(QSerialPort* port, const QString& path, const SerialMode& mode);

/// Closes the line and leaves it as it is set.
void closeSerial(QSerialPort* port);

}  // namespace platform::termdev
