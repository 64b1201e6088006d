#pragma once

#include <QList>

#include "container/DepositLines.h"
#include "container/screens/ContainerEntry.h"

namespace ui {
class ReportList;
}

namespace container {

/// The container deposits of a visit (dialog 393): what was charged for crates and bottles on each line of
/// the sales slip, and what the customer gives back of it.
class CContainerDepositDlg : public ContainerEntry {
    Q_OBJECT

  public:
    CContainerDepositDlg();

  private:
    void addAmountRows();
    /// Asks what is taken back of the chosen line's product.
    void takeBack();
    /// Refills the list and the amounts; `row` is chosen.
    void showLines(int row);
    void showAmounts();

    ui::ReportList* list_ = nullptr;
    QList<DepositLine> lines_;
};

}  // namespace container
