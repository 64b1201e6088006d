#pragma once

#include <QDate>
#include <QObject>
#include <QString>

#include "print/HostSummary.h"
#include "totals/Reconciliation.h"
#include "van/screens/ExchangeLog.h"
#include "van/screens/KsnetMsgLib.h"

namespace totals {

/// Asks the card host for its totals of the day and keeps the answer. It owns the component, as a control of
/// its screen, and the status log.
class SummaryExchange : public QObject {
    Q_OBJECT

  public:
    /// `box` is the screen's status box.
    SummaryExchange(QWidget* screen, QPlainTextEdit* box);

    /// Sends the request for that day, without one the clock's; the log begins with `opening`. Nothing while
    /// one is under way.
    void request(const QString& opening, const QDate& day);
    bool isExchanging() const { return log_.isExchanging(); }

    /// The answer; empty texts until one has come.
    const print::HostSummary& summary() const { return summary_; }
    bool isApproved() const { return summary_.responseCode == u"0000"; }
    /// What the answer says of the day's payments.
    HostDay hostDay();

  Q_SIGNALS:
    /// The exchange is over, well or not.
    void ended();

  private:
    QString readReply();

    van::CKsnet_msg_lib component_;
    van::ExchangeLog log_;
    print::HostSummary summary_;
};

}  // namespace totals
