#pragma once

#include <QString>

namespace app {

/// Why nothing can be kept in the device folder, in words for the salesman and with the folder's name: it is
/// missing, it cannot be written, or its disk is full. Empty when none of it is so. Tries it with a file that
/// is gone again at once.
QString deviceProblem();

}  // namespace app
