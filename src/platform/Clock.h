#pragma once

#include <QDateTime>

/// The terminal's clock. Everything that needs the time asks here, so a visit script can set it.
namespace platform::clock {

/// Local date and time: the set one if there is one, else the machine's.
QDateTime now();

/// Stops the clock at `moment`. An invalid moment lets the machine's clock run again.
void set(const QDateTime& moment);

}  // namespace platform::clock
