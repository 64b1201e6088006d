#pragma once

#include "books/TransactionRecord.h"
#include "collect/SimplePayment.h"
#include "ui/Screen.h"

namespace collect {

/// The simple payment (dialog 104): the amounts of a card payment without a sales slip.
class CSimplePaymentDlg : public ui::Screen {
    Q_OBJECT

  public:
    CSimplePaymentDlg();

  private:
    void keyAmount(SimpleAmount which, const QString& title);
    /// True when a simple payment of the customer was deleted though its payment stands, and the salesman has
    /// it put back rather than pays again.
    bool isApprovalPutBack();
    void finish();
    void showAmounts();

    books::SettlementAmounts amounts_;
};

}  // namespace collect
