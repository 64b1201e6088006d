#pragma once

#include "sales/screens/ConsonantBoard.h"

namespace sales {

/// The consonant board of the customers (dialog 143).
class CCustomerBoardDlg : public ConsonantBoard {
    Q_OBJECT

  public:
    CCustomerBoardDlg();

  protected:
    void seekChosen() override;
};

}  // namespace sales
