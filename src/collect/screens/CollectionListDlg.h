#pragma once

#include "ui/Screen.h"

namespace ui {
class ReportList;
}

namespace collect {

/// The list of the day's collection slips (dialog 150).
class CCollectionListDlg : public ui::Screen {
    Q_OBJECT

  public:
    CCollectionListDlg();

  private:
    void fill();
    void choose(int row);
    void openHere();
    void deleteChosen();
    void closeIfDone();

    ui::ReportList* list_ = nullptr;
};

}  // namespace collect
