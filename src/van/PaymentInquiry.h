#pragma once

#include <QString>
#include <QStringView>
#include <optional>

#include "books/PaymentJournal.h"
#include "books/TransactionRecord.h"
#include "platform/Won.h"

/// What the host's answer to a question about a payment means.
namespace van {

enum class PaymentVerdict {
    Approved,    ///< Charged; the reply has the transaction number.
    NotCharged,  ///< Refused, or never received and refused from now on.
    Open,        ///< The answer does not tell.
};

/// `answeredNumber` is the reply's field kAnsweredNumberField. Without it the host has answered with the
/// terminal's last payment, as an older one does: that counts as this one only when nothing else can be
/// meant, which is when amount and kind agree, it was sent less than a day ago, no payment was sent after it,
/// and the transaction number is on no slip and on no other payment.
PaymentVerdict judge(const books::JournalPayment& payment, const books::HostReply& reply,
                     QStringView answeredNumber);

/// What the answer has made of the payment.
struct SettledPayment {
    PaymentVerdict verdict = PaymentVerdict::Open;
    bool isKept = false;                        ///< The journal has it; an open payment stays as it is.
    std::optional<books::CollectionSlip> slip;  ///< With its approval, as it stands.
};
/// Judges the answer and settles the payment with it.
SettledPayment settle(const books::JournalPayment& payment, const books::HostReply& reply,
                      QStringView answeredNumber);

/// What to tell when an approval speaks of another amount than the host was asked for, in won; empty when it
/// names that one or none.
QString tellApprovedAmount(const books::HostReply& reply, platform::Won asked);

}  // namespace van
