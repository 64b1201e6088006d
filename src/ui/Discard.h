#pragma once

#include "platform/Rows.h"

namespace ui {

/// Lets go of rows that nothing shows any more. Those of a long list are freed a piece at a time while the
/// event loop has nothing else to do: all at once they hold up the touch that closes the list.
void discard(platform::Rows rows);

}  // namespace ui
