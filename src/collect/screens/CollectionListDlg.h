#pragma once

#include <QStringList>

#include "app/SlipListScreen.h"

namespace collect {

/// The list of the day's collection slips (dialog 150).
class CCollectionListDlg : public app::SlipListScreen {
    Q_OBJECT

  public:
    CCollectionListDlg();

  protected:
    app::ListedSlips loadSlips() override;
    void takeSlip(const platform::Rows& slips, int row) override;
    void openSlip() override;
    void deleteSlip() override;

  private:
    QStringList names_;  ///< The customers' names; the list also says which card amounts are not approved.
};

}  // namespace collect
