#pragma once

#include <QString>

#include "platform/Settings.h"

/// Opens the devices of the terminal without ever waiting for one: descriptors are non-blocking and closed in
/// a program that this one starts. Each returns -1, with errno saying why, when it cannot.
namespace platform::termdev {

/// `flags` are those of open(2) that say what is done with the device. The file must exist.
int openDevice(const QString& path, int flags);

/// A serial line set to `mode`, 8-bit clean, and this program's alone: EBUSY while another one of this
/// system has it.
int openSerial(const QString& path, const SerialMode& mode);

/// A connection that may still be under way: what becomes of it shows with the first write.
int connectTcp(const QString& address, int port);

}  // namespace platform::termdev
