#pragma once

#include <QList>

#include "books/ContainerBalance.h"
#include "ui/Screen.h"

namespace container {

/// What the customer holds of each container product (dialog 395), with the working slip as it is on screen.
class CContainerBalanceDlg : public ui::Screen {
    Q_OBJECT

  public:
    CContainerBalanceDlg();

  private:
    /// Shows how the product of that row came to its balance.
    void showProduct(int row);

    QList<books::ContainerBalance> balances_;
};

}  // namespace container
