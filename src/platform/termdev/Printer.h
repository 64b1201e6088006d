#pragma once

#include <QStringView>

#include "platform/termdev/DeviceStatus.h"

namespace platform::termdev {

/// What stands behind the printer operations of the device library. Every operation returns 1 when it was
/// done and 0 when not; callers of the library ignore it, so a printer traces its own failures.
class Printer {
  public:
    virtual ~Printer() = default;

    virtual int open() = 0;
    virtual int close() = 0;
    /// Resets the mode: size 0.
    virtual int initialise() = 0;
    /// 4 selects the enlarged size (double width and height), 0 the normal one.
    virtual int setSize(int mode) = 0;
    /// Each "\n" ends a line; text without one stays in the line at hand.
    virtual int print(QStringView text) = 0;
    /// Ends a line at hand, then advances `lines` blank lines.
    virtual int feed(int lines) = 0;
    /// How the printer is; one that cannot fail is always ready.
    virtual DeviceStatus status() const { return {}; }
};

}  // namespace platform::termdev
