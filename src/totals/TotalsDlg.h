#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "print/HostSummary.h"
#include "ui/Screen.h"
#include "van/ExchangeLog.h"
#include "van/KsnetMsgLib.h"

namespace totals {

/// The end-of-day dialog (457): shows the reports of the day, and asks the card host for its totals of the
/// day and prints them.
class CTotalsDlg : public ui::Screen {
    Q_OBJECT

  public:
    CTotalsDlg();

  private:
    /// Puts a button on the next free place, two beside each other. What it does waits for the end of an
    /// exchange.
    void addWork(int controlId, const QString& caption, std::function<void()> work);
    void request();
    QString readReply();
    void exchangeEnded();

    van::CKsnet_msg_lib component_;
    std::optional<van::ExchangeLog> log_;
    print::HostSummary summary_;
    int works_ = 0;
};

}  // namespace totals
