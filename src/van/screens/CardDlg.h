#pragma once

#include <QTimer>
#include <optional>

#include "books/CollectionSlip.h"
#include "books/PaymentJournal.h"
#include "books/TransactionRecord.h"
#include "print/CardReceipt.h"
#include "print/SlipPapers.h"
#include "ui/Screen.h"
#include "van/screens/ExchangeLog.h"
#include "van/screens/HostRequest.h"
#include "van/screens/KsnetMsgLib.h"

namespace ui {
class ReportList;
}

namespace van {

/// The card dialog (449): every exchange of a visit passes here, as do a simple payment, the balance inquiry
/// and the previous transaction.
class CCardDlg : public ui::Screen {
    Q_OBJECT

  public:
    CCardDlg();
    ~CCardDlg() override;

  private:
    /// True but for a simple payment, the balance inquiry and the previous transaction.
    static bool isVisit();
    void addControls();
    void addApprovalControls();
    void preparePayment();
    void loadCustomer();
    void cardSwiped();
    void requestPayment();
    void send(RequestKind kind, books::RequestType type);
    void exchangeEnded();
    void paymentApproved();
    /// Tells when the host has approved another amount than it was asked for.
    void tellOtherAmount() const;
    /// Overwrites the card's tracks and the password.
    static void wipeCard();
    void showBalance();
    void reprintPrevious();
    /// A large 승인 with the amount, and what to do next.
    void showApproval(platform::Won amount);
    /// Both copies of what the visit leaves behind, without what has been printed here.
    void printVisit();
    /// What waits for the printer, or that both copies came out.
    void showPrinter();
    /// The seller's copy, then the question for the buyer's, unless there is nothing to print.
    void printCopies(print::SlipPapers& papers);
    bool printSlip(print::SlipPapers& papers, int selector, books::Copy copy);
    print::CardExchange exchange() const;
    std::optional<print::Document> cardReceipt() const;
    /// The slip of a simple payment as its approval makes it.
    books::CollectionSlip simplePayment() const;
    bool recordApproval();
    /// The journal's entry for the payment that is about to leave.
    books::JournalPayment journalPayment(const QString& number) const;
    /// Notes what became of a payment that was not approved.
    void settleUnapproved();
    /// Asks the host about all open payments. False when this slip is paid already, or another payment of
    /// this customer was found approved or stays open.
    bool isPaymentFree();
    /// Asks again without a new swipe.
    void askAgain();
    bool isThisSlipOpen() const;
    /// Offers the question again while the payment of this slip is open.
    void offerQuestion();
    /// Sends the request, or says why what the keypad gave is no password.
    void takePassword(bool isEntered);
    /// Tells, when it is so, that a payment of this dialog was not answered.
    void tellOpenPayment() const;
    void goBack();
    void finish();

    CKsnet_msg_lib component_;
    ui::ReportList* results_ = nullptr;
    QWidget* picture_ = nullptr;
    QWidget* askAgain_ = nullptr;
    std::optional<ExchangeLog> log_;
    QTimer look_;
    std::optional<print::SlipPapers> papers_;  ///< Of the visit, once its payment is approved.
    QString sentTime_;                         ///< When the request at hand left, "yyyyMMddHHmmss".
    QString maskedCard_;     ///< The number of the card of the request at hand, as the receipt shows it.
    QString paymentNumber_;  ///< Message number of the payment at hand.
    bool areCopiesPrinted_ = false;  ///< By a press on both copies.
    bool isBusyWithCard_ = false;
    bool isApproved_ = false;
};

}  // namespace van
