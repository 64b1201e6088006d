#pragma once

#include <QList>
#include <optional>

#include "books/PaymentJournal.h"
#include "books/TransactionRecord.h"
#include "print/SlipPapers.h"
#include "ui/Screen.h"
#include "van/screens/ExchangeLog.h"
#include "van/screens/KsnetMsgLib.h"

namespace van {

/// Asks the host at once, one after another, what became of the payments whose outcome is open, reports
/// it to the salesman and closes itself. Leaving it early leaves the rest open.
class CPaymentCheckDlg : public ui::Screen {
    Q_OBJECT

  public:
    CPaymentCheckDlg();

  private:
    void show(const books::JournalPayment& payment);
    void askNext();
    void answered();
    /// Tells of the approval, with the slip as it stands, and offers its papers.
    void approved(const std::optional<books::CollectionSlip>& slip, const print::SlipPapers& papers);
    void print(print::SlipPapers papers, const books::CollectionSlip& slip);

    CKsnet_msg_lib component_;
    std::optional<ExchangeLog> log_;
    QList<books::JournalPayment> waiting_;
    books::JournalPayment asked_;
    books::HostReply reply_;
    QString answeredNumber_;  ///< Field 1131 of the reply.
};

}  // namespace van
