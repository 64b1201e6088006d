#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <optional>

#include "ui/WaitCursor.h"
#include "van/screens/KsnetMsgLib.h"

class QPlainTextEdit;

namespace van {

/// The status log of a dialog that talks to the card host: every event of the component appends its text and
/// shows the whole log. The wait cursor stays from the start of an exchange to its end.
class ExchangeLog : public QObject {
    Q_OBJECT

  public:
    /// `readReply` takes the reply out of the component and returns what the log gains. `box` is the dialog's
    /// status box.
    ExchangeLog(CKsnet_msg_lib& component, QPlainTextEdit* box, std::function<QString()> readReply);
    ~ExchangeLog() override;

    /// Replaces the log.
    void set(const QString& text);
    void append(const QString& text) { set(text_ + text); }
    /// Adds a text that shows with the next event only.
    void appendUnseen(const QString& text) { text_ += text; }

    /// To be called before the request goes out.
    void begin();
    /// Ends an exchange that was not started after all, without a signal.
    void abandon() { end(); }
    bool isExchanging() const { return wait_.has_value(); }

  Q_SIGNALS:
    /// The exchange is over, well or not; the log says which.
    void ended();

  private:
    void end();

    QPlainTextEdit* box_;
    QString text_;
    std::optional<ui::WaitCursor> wait_;  ///< While an exchange is under way.
};

}  // namespace van
