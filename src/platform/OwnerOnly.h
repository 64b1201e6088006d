#pragma once

#include <QString>

/// Keeps what a program holds, on disk and in memory, to the user who runs it.
namespace platform {

/// From here on what this process makes can be read by its owner alone, and a crash leaves no picture of its
/// memory behind. The first call of a program's main().
void keepToOwner();

/// Takes away what others may do with the files and sockets in `folder` and below it; folders stay as they
/// are, and links are not followed. For what an earlier build or another program's umask left open. Returns
/// how many could not be changed, each of them traced.
int tightenFiles(const QString& folder);

}  // namespace platform
