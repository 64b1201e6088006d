#pragma once

#include <QStringList>

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
    QStringList names_;  ///< The customers' names; the list also says which card amounts are not approved.
};

}  // namespace collect
