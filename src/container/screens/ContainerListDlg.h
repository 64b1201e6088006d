#pragma once

#include "app/SlipListScreen.h"

namespace container {

/// The list of the day's container slips (dialog 391).
class CContainerListDlg : public app::SlipListScreen {
    Q_OBJECT

  public:
    CContainerListDlg();

  protected:
    app::ListedSlips loadSlips() override;
    void takeSlip(const platform::Rows& slips, int row) override;
    void deleteSlip() override;
};

}  // namespace container
