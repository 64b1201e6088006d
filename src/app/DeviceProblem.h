#pragma once

#include <QString>

namespace app {

/// How sure the answer has to be: Disk waits until the disk has taken what is tried.
enum class Sure { AtOnce, Disk };

/// Why nothing can be kept in the device folder, in words for the salesman and with the folder's name: it is
/// missing, it cannot be written, or its disk is full. Empty when none of it is so. Tries it with a file that
/// is gone again at once.
QString deviceProblem(Sure sure = Sure::Disk);

}  // namespace app
