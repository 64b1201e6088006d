#pragma once

#include <QtGlobal>

namespace ui {

/// Shows the wait cursor as long as it lives. Work that takes longer also gets a mark that moves in the
/// terminal's corner: by itself where the work lets the event loop run, else with every call of alive().
class WaitCursor {
  public:
    WaitCursor();
    ~WaitCursor();
    Q_DISABLE_COPY_MOVE(WaitCursor)

    /// Reports between the steps of work that it goes on. Nothing happens when nobody waits.
    static void alive();
};

}  // namespace ui
