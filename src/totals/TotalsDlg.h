#pragma once

#include <optional>

#include "print/HostSummary.h"
#include "ui/Screen.h"
#include "van/ExchangeLog.h"
#include "van/KsnetMsgLib.h"

namespace totals {

/// The end-of-day dialog (457): asks the card host for its totals of the day and prints them.
class CTotalsDlg : public ui::Screen {
    Q_OBJECT

  public:
    CTotalsDlg();

  private:
    void request();
    QString readReply();
    void exchangeEnded();

    van::CKsnet_msg_lib component_;
    std::optional<van::ExchangeLog> log_;
    print::HostSummary summary_;
};

}  // namespace totals
