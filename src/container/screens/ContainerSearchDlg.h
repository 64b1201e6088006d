#pragma once

#include "app/ProductSearchScreen.h"

namespace container {

/// The search for container products (dialog 397): those of the session's search key.
class CContainerSearchDlg : public app::ProductSearchScreen {
    Q_OBJECT

  public:
    CContainerSearchDlg();
};

}  // namespace container
