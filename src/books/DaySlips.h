#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringView>

#include "books/CollectionRows.h"
#include "books/PrintLog.h"

namespace books {

/// How the slips of a user's day stand, read once for a list of them.
class DaySlips {
  public:
    DaySlips(QStringView date, QStringView userId);

    /// The first collection under that number and customer; null without one.
    const CollectionSlip* collection(const QString& junNo, const QString& gCode) const;

    /// True while it is open whether a payment under the number was charged.
    bool isPaymentOpen(const QString& junNo) const { return open_.contains(junNo); }

    /// True for a card amount of a visit that no host has approved.
    bool isCardUnapproved(const QString& junNo) const;

    /// "확인중" while it is open whether a payment under the number was charged, "카드미승인" for a card
    /// amount that isCardUnapproved, "결제" for an approved one; else empty.
    QString paymentState(const QString& junNo) const;

    /// "발행" or "미발행", as any copy of the paper was printed or none.
    QString printState(Paper paper, const QString& junNo) const;

  private:
    QList<CollectionSlip> collections_;
    QMultiHash<QString, qsizetype> byNumber_;  ///< Places in `collections_`.
    QSet<QString> open_;                       ///< Numbers with an open payment.
    QHash<Paper, QSet<QString>> printed_;
};

/// The money that a collection brought in, in won: card, cash and earlier receivable paid.
platform::Won received(const CollectionSlip& slip);

}  // namespace books
