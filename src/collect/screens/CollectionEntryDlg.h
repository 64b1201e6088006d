#pragma once

#include <QString>

#include "books/OpenPayments.h"
#include "books/TransactionRecord.h"
#include "collect/CollectionEntry.h"
#include "ui/Screen.h"

namespace collect {

/// The collection entry (dialog 450): what the customer pays at the end of a visit, and how.
class CCollectionEntryDlg : public ui::Screen {
    Q_OBJECT

  public:
    CCollectionEntryDlg();

  private:
    using Key = platform::Won (*)(books::SettlementAmounts&, platform::Won);

    void addSaleRows();
    void addPaymentRows();
    /// Opens the slip of the session. The recovery's excess is told once the screen shows.
    void load();
    void keyAmount(const QString& title, Key key);
    void settle(void (*rule)(books::SettlementAmounts&));
    void keyEarlierReceivable();
    void deletePrevious();
    /// Asks what became of a payment of this slip that was not answered.
    books::PaymentQuestion askAboutPayment();
    /// The same before it is saved. False when that stays open, unless it is settled on credit, or when it
    /// was approved.
    bool isPaymentSettled();
    /// True when this slip's payment is approved though its collection has gone, and the salesman has it put
    /// back rather than pays again.
    bool isApprovalPutBack();
    /// Ends the visit that was found paid; where the slip was changed since, shows what is left.
    void takeApproval();
    void finish();
    /// Saves the slip as it shows. False when it did not get in.
    bool save() const;
    void goBack();
    /// What the heading says of the card amount: approved, not approved, or nothing.
    QString approvalState() const;
    /// The container slip is worth another amount than the saved collection has for it.
    void askToTakeOver(platform::Won recovery);
    void showAmounts();

    CollectionEntry entry_;
};

}  // namespace collect
