#pragma once

#include <QString>
#include <functional>

namespace platform::termdev {

/// How a device is, for whoever shows it beside the terminal's screens, which never learn of it.
struct DeviceStatus {
    enum class State {
        Ready,    ///< Nothing waits.
        Waiting,  ///< Jobs are on their way to the printer, or kept while another program sends its own.
        Fault,    ///< `fault` says what is wrong; waiting jobs are kept.
    };

    State state = State::Ready;
    int waitingJobs = 0;
    QString fault;  ///< English, for the log and an administrator; empty without a fault.
};

/// Tells `observer` each time that a device's status may have changed; an empty function ends that.
void setStatusObserver(std::function<void()> observer);

/// For the devices: passes it on to the observer.
void statusChanged();

}  // namespace platform::termdev
