#pragma once

#include "ui/Screen.h"

namespace ui {
class ReportList;
}

namespace sales {

/// The list of the day's sales slips (dialog 132).
class CGaraeSeek : public ui::Screen {
    Q_OBJECT

  public:
    CGaraeSeek();

  private:
    void fill();
    void choose(int row);
    void openSlip();
    void pay();
    void deleteChosen();
    void closeIfDone();

    ui::ReportList* list_ = nullptr;
};

}  // namespace sales
