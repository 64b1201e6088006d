#pragma once

#include <QStringView>
#include <functional>

/// Debug output of the system: a Qt logging category and a bounded log file in the device folder. Callers
/// never hand over a password, a card track or a value of a statement.
namespace platform {

/// Writes one trace text to the debug output and the log. A missing line end is added in the file.
void trace(QStringView text);

/// Starts the log file `rovana.log` in the device folder. The file is kept under `limitBytes`: a full one
/// becomes `rovana.log.1`, replacing the one before. Returns false, and logs to the debug output only, when
/// the file cannot be written.
bool openLog(qint64 limitBytes = 1024 * 1024);

/// Lets a test or a program listen to every trace text; an empty function stops it.
void setTraceObserver(std::function<void(QStringView)> observer);

}  // namespace platform
