#pragma once

#include "print/HostSummary.h"
#include "ui/Screen.h"
#include "van/KsnetMsgLib.h"

class QPlainTextEdit;

namespace van {

/// The end-of-day dialog (457): asks the card host for its totals of the day and prints them.
class CTotalsDlg : public ui::Screen {
    Q_OBJECT

  public:
    CTotalsDlg();
    ~CTotalsDlg() override;

  private:
    void connectComponent();
    void request();
    void readReply();
    void exchangeEnded();
    void append(const QString& text);
    void setLog(const QString& text);
    void setExchanging(bool isExchanging);

    CKsnet_msg_lib component_;
    QPlainTextEdit* logView_ = nullptr;
    QString log_;
    print::HostSummary summary_;
    bool isExchanging_ = false;
};

}  // namespace van
