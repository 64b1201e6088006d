#pragma once

#include <QList>

#include "sales/UnvisitedOrders.h"
#include "ui/Screen.h"

namespace sales {

/// The day's orders of the office that are still to be delivered (dialog 461), with telephone, in the
/// office's order. Left with one it has that order in the session.
class CUnvisitedDlg : public ui::Screen {
    Q_OBJECT

  public:
    CUnvisitedDlg();

  private:
    void take();

    ui::ReportList* list_ = nullptr;
    QList<UnvisitedOrder> orders_;
};

}  // namespace sales
