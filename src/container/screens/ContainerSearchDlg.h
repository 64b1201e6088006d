#pragma once

#include "ui/Screen.h"

namespace ui {
class ReportList;
}

namespace container {

/// The search for container products (dialog 397). It lists those of the session's search key and leaves the
/// chosen one in the session.
class CContainerSearchDlg : public ui::Screen {
    Q_OBJECT

  public:
    CContainerSearchDlg();

  private:
    /// Builds the columns and the list anew, without a choice.
    void fill();
    void choose(int row);
    void confirm();
    void cancel();

    ui::ReportList* list_ = nullptr;
};

}  // namespace container
