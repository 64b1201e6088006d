#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <optional>

#include "books/CollectionSlip.h"
#include "platform/Won.h"

/// Every payment that was sent to the card host and what became of it, in `PAYJOURNAL`. A payment is on disk
/// before its request leaves, so that none is forgotten whatever happens to the terminal, and none is made
/// again before it is known what became of the first. Neither track nor password is in it. In a database of
/// an older terminal the table is missing: no payment can be noted then, and none is found.
namespace books {

enum class PaymentState {
    Sent,      ///< Its exchange is under way, or the terminal stopped in it.
    Approved,  ///< The collection slip has its transaction number.
    Refused,   ///< The host has refused it and charged nothing.
    Unknown,   ///< Its exchange ended without an answer.
    Released,  ///< It has not reached the host, or the host will refuse it; nothing is charged.
    Prepared,  ///< No payment yet: its collection is on the way to the card (notePrepared).
};

/// "sent", "approved", "refused", "unknown", "released" or "prepared"; `State` in the table.
QStringView stateName(PaymentState state);

/// What list and paper call a slip whose payment is open.
inline constexpr QStringView kBeingAsked = u"카드결제 확인중";
/// What screen, list and paper call a card amount of a visit that no host has approved.
inline constexpr QStringView kNotApproved = u"미승인";

struct JournalPayment {
    QString number;  ///< Message number, 32 hexadecimal digits.
    PaymentState state = PaymentState::Sent;
    bool isCard = true;     ///< Else cash that is entered at the host.
    platform::Won charged;  ///< What the host was asked for, in won.
    /// The slip that it pays, as it stood then. `MSGSENDTIME` is the time of sending, `BANKTRANNO` empty
    /// until the payment is approved.
    CollectionSlip slip;
    // Nothing where it is not known.
    std::optional<platform::Won> saleTotal;       ///< What its sale came to then.
    std::optional<platform::Won> containerWorth;  ///< What its container slip was worth then.

    /// True while it is open whether the customer has been charged.
    bool isUnsettled() const { return state == PaymentState::Sent || state == PaymentState::Unknown; }
};

/// The payment of that slip as it is asked for at `sentTime`, without a number: of the saved collection of a
/// visit, else a simple payment. `cardPaymentFlag` as in books::chargeKind.
JournalPayment paymentToSend(const SlipIdentity& slip, const QString& gName, const SettlementAmounts& amounts,
                             int cardPaymentFlag, bool isVisit, const QString& sentTime);

/// A simple payment with those amounts, before its approval.
CollectionSlip simplePaymentSlip(const SlipIdentity& slip, const QString& gName,
                                 const SettlementAmounts& amounts, const QString& sentTime);

/// Notes a payment that is about to be sent, safe on disk on return. False when it could not be noted (no
/// table, disk full, a single quote in a text) or when an unsettled payment may be the same customer's; it
/// must not be sent then.
bool notePayment(const JournalPayment& payment);

/// Adds the payment as part of `transaction`, as it stands. After false that must not be committed.
[[nodiscard]] bool addPayment(db::Transaction& transaction, const JournalPayment& payment);

/// Notes as part of `transaction` that `slip` is about to be paid by card, with the slip that it replaces;
/// one that is noted already stays. In a database of an older terminal nothing is noted. After false the
/// transaction must not be committed.
[[nodiscard]] bool notePrepared(db::Transaction& transaction, const CollectionSlip& slip,
                                const QList<CollectionSlip>& replaced);

/// Forgets that of a date, number and user, or with an empty id of everybody. After false, no commit.
[[nodiscard]] bool forgetPrepared(db::Transaction& transaction, QStringView date, QStringView junNo,
                                  QStringView userId);

/// The slips on the way to the card. The `slip` of each is the one that was replaced; without one its `Gubun`
/// and amounts are empty. No other function here returns them.
QList<JournalPayment> preparedPayments();
std::optional<JournalPayment> preparedPayment(QStringView date, QStringView junNo, QStringView userId);

/// Settles an unsettled payment without an approval, or makes a sent one unknown. False when there is no such
/// payment, or when the change did not last; nothing is changed then.
bool settlePayment(QStringView number, PaymentState state);

/// Makes a settled payment unknown again, for one that was settled by mistake: the host is asked anew. An
/// approval goes off its slip (takeApprovalOff). False when there is no such payment, or when the change did
/// not last; nothing is changed then.
bool reopenPayment(QStringView number);

/// Settles an unsettled payment with its approval: journal, collection slip, receivable and the state of the
/// sales slip in one transaction, safe on disk on return. A collection slip that has gone or been changed
/// since is put back as it was charged. Where its number belongs to another customer or payment by now, it
/// comes in under a number of its own. Returns the slip as it stands; nothing when the change did not last or
/// `transactionNumber` is empty.
std::optional<CollectionSlip> approvePayment(QStringView number, QStringView transactionNumber);

/// The newest approved payment of the customer's slip of that date, number and user whose approval is on no
/// slip any more: the collection was deleted, or the database is an older copy. Where there is none, that of
/// another sale of his of that date, whoever wrote it.
std::optional<JournalPayment> approvalWithoutSlip(const SlipIdentity& slip);

/// The same for a simple payment: of the registered customer's simple payments under any number of that date
/// and user, else of his sales.
std::optional<JournalPayment> deletedPayment(const SlipIdentity& slip);

/// Puts the approval of such a payment back on its slip, as when it is approved. Returns
/// the slip as it stands; nothing when the change did not last.
std::optional<CollectionSlip> putApprovalBack(QStringView number);

/// Makes unknown what is still noted as sent. For when no exchange can be under way.
void closeStoppedPayments();

/// The unsettled payments of all users and days in the order of their sending.
QList<JournalPayment> unsettledPayments();
bool hasUnsettledPayments();

/// The newest payment of the slip of that date, number and user; nothing without one.
std::optional<JournalPayment> lastPayment(QStringView date, QStringView junNo, QStringView userId);
/// The first unsettled payment of the slips of that date and number, of one user or, with an empty id, of
/// everybody.
std::optional<JournalPayment> unsettledPayment(QStringView date, QStringView junNo, QStringView userId);
bool hasUnsettledPayment(QStringView date, QStringView junNo, QStringView userId);
/// The payment with that message number.
std::optional<JournalPayment> findPayment(QStringView number);

/// All payments of slips of that date in the order of their sending; an empty date stands for all. Nothing
/// when they could not be read to the end.
std::optional<QList<JournalPayment>> journalPayments(QStringView date);

/// True when no later payment was sent and no payment of the journal has the transaction number, so that a
/// last payment with that number can only be this one.
bool isLastPayment(const JournalPayment& payment, QStringView transactionNumber);

}  // namespace books
