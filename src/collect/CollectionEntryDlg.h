#pragma once

#include <QString>
#include <optional>

#include "app/Transaction.h"
#include "ui/Screen.h"

namespace collect {

/// The collection entry (dialog 450): what the customer pays at the end of a visit, and how.
class CCollectionEntryDlg : public ui::Screen {
    Q_OBJECT

  public:
    CCollectionEntryDlg();

  private:
    using Key = platform::Won (*)(app::SettlementAmounts&, platform::Won);

    void addSaleRows();
    void addPaymentRows();
    void load();
    void keyAmount(const QString& title, Key key);
    void settle(void (*rule)(app::SettlementAmounts&));
    void keyEarlierReceivable();
    void deletePrevious();
    /// Asks what became of a payment of this slip that was not answered. False when that stays open, or when
    /// it was approved, which ends the visit.
    bool isPaymentSettled();
    void finish();
    /// After every change: the card of an approved collection keeps its amount.
    void holdApprovedCard();
    void showAmounts();

    app::SettlementAmounts amounts_;
    bool isApproved_ = false;
    /// Whose collection has this slip's number, when it is another customer's. It must go before this is
    /// saved.
    std::optional<QString> otherCustomer_;
    /// What the card was charged, when this customer's collection is approved.
    std::optional<platform::Won> approvedCard_;
};

}  // namespace collect
