#pragma once

#include <QString>
#include <QStringView>
#include <QWidget>
#include <initializer_list>

#include "platform/message/Component.h"

namespace van {

/// The message component as a control of a dialog. Every operation is one call by dispatch id and returns the
/// component's status: 0, or a negative code of platform::message::Status. A text that the component writes
/// into is empty when the call fails. What an operation does is the component's business; no text is kept.
/// The numbered operations are not offered by the card network and are here to keep the ids in step.
class CKsnet_msg_lib : public QWidget {
  public:
    static constexpr int kControlId = 1140;

    using QWidget::QWidget;

    void AboutBox();
    /// The values of a request's header: "JB", "84", "00", "1234567890", four blanks, "0200", message kind.
    short HeaderReq(QStringView p1, QStringView p2, QStringView p3, QStringView p4, QStringView p5,
                    QStringView p6, QStringView messageKind);
    /// A card or cash payment. Amounts in won, decimal. `recoveryFlag` is "1" when the recovery is 1 or more.
    short PaymentReq(QStringView p1, QStringView p2, QStringView cardData, QStringView password,
                     QStringView p5, QStringView supply, QStringView vat, QStringView deposit,
                     QStringView recoveryFlag, QStringView recovery, QStringView amount);
    /// The terminal's last approved transaction.
    short setPreTradeRep();
    /// A balance inquiry; `time` is "hhmmss".
    short BalanceReq(QStringView time, QStringView cardData, QStringView password, QStringView p4);
    short Operation5(QStringView p1, QStringView p2);
    /// The host's totals of a day; `time` is "hhmmss", `date` "yyyyMMdd".
    short setSummaryReq(QStringView time, QStringView date);
    short Operation7(QStringView p1, QStringView p2, QStringView p3, QStringView p4, QStringView p5,
                     QStringView p6, QStringView p7, QStringView p8, QStringView p9, QStringView p10);
    short Operation8(QStringView p1, QStringView p2, QStringView p3, QStringView p4, QStringView p5,
                     QStringView p6, QStringView p7, QStringView p8, QStringView p9, QStringView p10,
                     QStringView p11, QStringView p12, QStringView p13);
    short Operation9(QStringView p1, QStringView p2);
    short RecvHeader();
    short RecvPayment();
    short RecvPreTrade();
    short Operation13();
    short RecvBalance();
    short Operation15();
    short RecvSummary();
    short Operation17();
    short Operation18();
    short Operation19();
    short Operation20();
    short Operation21();
    /// A field of the last reply, by its number.
    short GetRecvField(short number, QString* text);
    short Operation23(short p1, QStringView p2, short p3, short p4, short p5, QStringView p6, QStringView p7,
                      QStringView p8, QStringView p9, QStringView p10, QString* p11, QString* p12,
                      QString* p13, QString* p14, QString* p15);
    /// A value that the component keeps: "221" host address as 12 digits, "222" port, "101".
    short GetSavedValue(QStringView key, QString* value);
    /// Starts the exchange and returns at once; the signals tell how it goes on. `timeOut` in seconds covers
    /// all of it. `port` carries 16 bits: those above 32,767 as negative numbers.
    short Commun(QStringView hostAddress, short port, short timeOut, short flag);
    short Operation26(QString* p1, QString* p2, QString* p3, QString* p4, QString* p5);

    /// The component itself, for its events and what it offers beside its operations.
    platform::message::Component& component() { return component_; }

  private:
    short InvokeHelper(int dispatchId, std::initializer_list<platform::message::Argument> arguments = {});

    platform::message::Component component_;
};

}  // namespace van
