#pragma once

#include <QList>
#include <QString>
#include <functional>
#include <optional>

#include "books/PaymentJournal.h"

/// What a payment of which it is open whether it was charged keeps from happening, and how it is told.
namespace books {

/// The first of the open payments that may be of the customer of `wanted`, which must not be sent then.
std::optional<JournalPayment> findInTheWay(const QList<JournalPayment>& open, const JournalPayment& wanted);

/// What becomes of a payment that was in the way of something.
enum class PaymentAnswer {
    Free,      ///< Nothing was in the way, or it was not charged.
    Approved,  ///< What was in the way is charged.
    Open,      ///< It stays open.
};

struct PaymentQuestion {
    PaymentAnswer answer = PaymentAnswer::Free;
    std::optional<JournalPayment> inTheWay;  ///< As it stands now; nothing where nothing was in the way.
    bool isPaid = false;                     ///< It has paid the slip that was to be paid.
};

/// Calls `ask`, which asks the host about every open payment of the terminal, when `find` finds one in the
/// way, and looks again.
using FindPayment = std::function<std::optional<JournalPayment>()>;
PaymentQuestion askAboutPayments(const FindPayment& find, const std::function<void()>& ask);

/// The same before `wanted` is sent. Every open payment is asked about then, whoever's it is: the line is
/// needed anyway.
PaymentQuestion askBeforePaying(const JournalPayment& wanted, const std::function<void()>& ask);

/// Customer, time of sending, kind and amount, as a message names a payment.
QString describePayment(const JournalPayment& payment);

/// Why no other payment of the customer is sent, and why nothing of the slip is deleted.
QString refuseToPay(const JournalPayment& open);
QString refuseToDelete(const JournalPayment& open);

/// The question before a slip is paid whose payment is approved already, though its collection was deleted.
QString askToPutBack(const JournalPayment& approved);

/// What the collection `row` of an open payment is once that is approved: what stands there on credit becomes
/// what was charged, below 0 where that was more; what it has as charged already only gets the approval.
/// Nothing when the row has no place for it: it is another customer's, has an approval, or is paid in another
/// way.
std::optional<CollectionSlip> payCredit(const CollectionSlip& row, const CollectionSlip& charged);

/// The collection of an approval that has no sale to pay any more: money that was received, which the debt
/// falls by.
CollectionSlip receivedWithoutSale(const CollectionSlip& charged);

}  // namespace books
