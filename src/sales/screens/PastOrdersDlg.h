#pragma once

#include "sales/PurchaseHistory.h"
#include "ui/Screen.h"

namespace sales {

/// The last slips of the customer (dialog 465), of which one is taken as an order. It leaves its place in the
/// session.
class CPastOrdersDlg : public ui::Screen {
    Q_OBJECT

  public:
    CPastOrdersDlg();

  private:
    void confirm();

    PurchaseHistory history_;
    int chosen_ = -1;
};

}  // namespace sales
