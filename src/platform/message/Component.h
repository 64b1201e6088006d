#pragma once

#include <QObject>
#include <QString>
#include <QStringView>
#include <chrono>
#include <memory>
#include <optional>
#include <span>
#include <variant>

#include "platform/Lines.h"
#include "platform/message/Fields.h"
#include "platform/message/Frame.h"
#include "platform/message/Seal.h"
#include "platform/message/Status.h"

namespace platform::message {

/// A parameter of an operation: a text, a 16-bit integer, or a text that the operation writes.
using Argument = std::variant<QStringView, qint16, QString*>;

/// The card network's message component. Its operations are called by dispatch id; an exchange goes on in the
/// event loop and is reported by signals, in this order: `communicating`, `messageSent`, `receiving` and
/// `communicationEnded`. A failed exchange has `errorOccurred` or `ksnetError` in place of what did not
/// happen. No signal is emitted from within an operation, and `communicationEnded` comes once after every
/// call of Commun, except one that an exchange under way turns away.
class Component : public QObject {
    Q_OBJECT

  public:
    Component();
    /// Drops an exchange that is under way, without a signal.
    ~Component() override;

    /// Calls an operation. An unknown id, other parameters than it takes, and an operation that the network
    /// does not offer are kBadInput; a text to be written is empty then. Texts are not kept.
    Status invoke(int dispatchId, std::span<const Argument> arguments);

    /// What one unit of Commun's time-out lasts; a second unless a test shortens it.
    static void setTimeOutUnit(std::chrono::milliseconds unit);

    /// The message number of the payment that Commun would send next; nothing when no payment is ready.
    /// Whoever has kept it can ask later what became of the payment.
    std::optional<MessageNumber> paymentNumber() const;

    /// True when the request of the last Commun may have left, wholly or in part, or may still leave. Without
    /// it the host cannot know the request, and will not.
    bool hasSent() const { return hasSent_; }

    /// Makes the previous-transaction request being set up ask for the payment of that number; to be called
    /// before setPreTradeRep and good for one. A host that knows such questions repeats the number in field
    /// 1131.
    void askAbout(const MessageNumber& number) { asked_ = number; }

    /// How the last exchange of the process stands, whichever component had it.
    enum class LastExchange { None, UnderWay, Answered, Failed };
    static LastExchange lastExchange();

  Q_SIGNALS:
    void communicating();
    void messageSent();
    void receiving();
    void communicationEnded();
    /// The exchange broke: nothing answered in time, the host closed the connection, or what came is no reply
    /// of the host. The debug output says which.
    void errorOccurred();
    /// The exchange failed with one of the codes of Status.
    void ksnetError(int code);

  private:
    using Arguments = std::span<const Argument>;
    struct Operation;
    struct Request;
    struct Exchange;
    enum class Stage { Starting, Communicating, Sent };

    static const Operation* findOperation(int dispatchId);

    Status headerReq(Arguments arguments);
    Status paymentReq(Arguments arguments);
    Status setPreTradeRep(Arguments arguments);
    Status balanceReq(Arguments arguments);
    Status setSummaryReq(Arguments arguments);
    Status recvHeader(Arguments arguments);
    Status recvPayment(Arguments arguments);
    Status recvPreTrade(Arguments arguments);
    Status recvBalance(Arguments arguments);
    Status recvSummary(Arguments arguments);
    Status getRecvField(Arguments arguments);
    Status getSavedValue(Arguments arguments);
    Status commun(Arguments arguments);
    Status aboutBox(Arguments arguments);

    bool isKind(std::initializer_list<QStringView> kinds) const;
    Status seal(const FieldWriter& body);
    Status replyIs(std::initializer_list<QStringView> kinds) const;
    Status start(QStringView host, quint16 port, int timeOut);
    void sendRequest();
    void requestLeft();
    void hangUp();
    void readReply();
    void takeReply(const Frame& frame);
    void connectionLost(Connection::Fault fault);
    bool reach(Stage stage);
    void breakOff(QStringView reason);
    void failWith(Status status);
    void endExchange();

    std::optional<FieldWriter> header_;
    QString kind_;
    std::optional<MessageNumber> asked_;  ///< What the next previous-transaction request asks about.
    bool hasSent_ = false;
    std::optional<FieldWriter> unsealed_;  ///< A request without secrets, sealed by Commun.
    std::unique_ptr<Request> request_;
    Status requestStatus_ = kBadInput;    ///< How the request operation ended.
    std::shared_ptr<Exchange> exchange_;  ///< Shared with nobody: others watch whether it is still there.
    std::optional<Fields> reply_;
    QString replyKind_;
};

}  // namespace platform::message
