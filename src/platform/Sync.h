#pragma once

#include <QString>

namespace platform {

/// Sees to it that a file's content, or the names in a folder, outlive a loss of power; false when they may
/// not.
bool syncToDisk(const QString& path);

/// Makes a folder and those around it that are missing, each on the disk; false when one cannot be.
bool makeFolder(const QString& path);

}  // namespace platform
