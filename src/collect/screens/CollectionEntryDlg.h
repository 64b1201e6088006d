#pragma once

#include <QString>
#include <optional>

#include "app/PaymentQuestion.h"
#include "books/CollectionSlip.h"
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
    void load();
    /// The slip that is settled.
    static books::SlipIdentity identity();
    /// Shows what was keyed when the entry was left before.
    void goOnWithKept(const OpenedEntry& entry);
    /// Keeps what is keyed for when the entry opens again.
    void keep();
    void keyAmount(const QString& title, Key key);
    void settle(void (*rule)(books::SettlementAmounts&));
    void keyEarlierReceivable();
    void deletePrevious();
    /// Asks what became of a payment of this slip that was not answered.
    app::PaymentQuestion askAboutPayment();
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
    /// True when the settlement goes on to the card host.
    bool isPaidOnLine() const;
    /// What the heading says of the card amount: approved, not approved, or nothing.
    QString approvalState() const;
    /// Takes over what the container slip of the visit is worth, and reports the recovery's excess after
    /// that, once the screen shows.
    void takeOverContainers(const std::optional<books::CollectionSlip>& saved);
    /// Takes the worth of the container slip over, as if keyed. Returns what exceeds the total.
    platform::Won takeOver(platform::Won recovery);
    /// The container slip is worth another amount than the saved collection has for it.
    void askToTakeOver(platform::Won recovery);
    /// After every change: the card of an approved collection keeps its amount.
    void holdApprovedCard();
    /// The amounts of a simple payment, which was charged as it stands and moves no debt, are not changed
    /// here.
    void setSimplePayment(bool isSimplePayment);
    void showAmounts();

    books::SettlementAmounts amounts_;
    bool isApproved_ = false;
    bool isSimplePayment_ = false;
    /// The saved collection of this number is another customer's; it gets one of its own when this is saved.
    bool isOthers_ = false;
    /// What the card was charged, when this customer's collection is approved.
    std::optional<platform::Won> approvedCard_;
    /// What is kept of this entry, but for the amounts keyed.
    books::KeptSettlement kept_;
    /// The worth of the containers that the amounts gone on with have in them, or were keyed against.
    std::optional<platform::Won> keptRecovery_;
};

}  // namespace collect
