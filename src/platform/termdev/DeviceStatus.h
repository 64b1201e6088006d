#pragma once

#include <QString>
#include <functional>

namespace platform::termdev {

/// How a device is. The screens that print at the end of a visit tell of its jobs.
struct DeviceStatus {
    enum class State {
        Ready,    ///< Nothing waits.
        Waiting,  ///< Jobs are on their way to the printer, or kept while another program sends its own.
        Fault,    ///< `fault` says what is wrong; waiting jobs are kept.
    };

    /// What kind of fault it is, for words of the user's own.
    enum class Cause {
        None,
        NoPaper,
        TakesNothing,  ///< Out of paper, open or switched off: the line does not tell which.
        Away,          ///< It does not answer, or its line broke.
        NoRoom,        ///< The jobs' folder cannot be used.
        Incomplete,    ///< The program lacks a part of itself.
    };

    State state = State::Ready;
    int waitingJobs = 0;
    QString fault;  ///< English, for the log and an administrator; empty without a fault.
    Cause cause = Cause::None;
};

/// Calls `observer` each time that a device's status may have changed; an empty function ends that.
void setStatusObserver(std::function<void()> observer);

/// For the devices: passes it on to the observer.
void statusChanged();

}  // namespace platform::termdev
