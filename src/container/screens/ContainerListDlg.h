#pragma once

#include "ui/Screen.h"

namespace ui {
class ReportList;
}

namespace container {

/// The list of the day's container slips (dialog 391).
class CContainerListDlg : public ui::Screen {
    Q_OBJECT

  public:
    CContainerListDlg();

  private:
    void fill();
    void choose(int row);
    void openSlip();
    void deleteChosen();
    /// Opens a screen of the slip work; the list goes when that finished the work, else it is filled anew.
    void runWork(int dialogId);

    ui::ReportList* list_ = nullptr;
};

}  // namespace container
