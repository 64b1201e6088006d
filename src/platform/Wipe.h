#pragma once

#include <QString>

namespace platform {

/// Overwrites the text's characters before letting them go. For passwords. A text that another one shares is
/// only let go.
void wipe(QString* text);

}  // namespace platform
