#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <cstdint>
#include <optional>

#include "books/CollectionSlip.h"
#include "books/ContainerBalance.h"
#include "books/PaymentJournal.h"
#include "platform/Won.h"

/// A visit is all that stands under one date, slip number, user and customer.
namespace books {

/// One line of the sales slip; amounts in won.
struct SoldLine {
    QString PCode;
    QString PName;
    std::int64_t boxes = 0;
    std::int64_t bottles = 0;
    platform::Won supply;
    platform::Won vat;
    platform::Won crateDeposit;
    platform::Won bottleDeposit;
};

/// One line of the container slip with its amounts, in won.
struct ReturnedLine : ContainerReturn {
    platform::Won worth;  ///< Its deposits.
    platform::Won fees;
};

struct NotedPrint {
    QString document;  ///< paperName.
    QString copy;      ///< copyName.
    QString printedAt;
};

struct Visit {
    QString date;  ///< "yyyy-MM-dd".
    QString junNo;
    QString userId;
    QString gCode;
    QString gName;
    QString vatMode;             ///< The user's VAT rounding mode.
    QString printState;          ///< `WorkGubun` of the sales slip's first line.
    bool isUndelivered = false;  ///< An order of the office that nobody has delivered.
    QList<SoldLine> goods;
    QList<ReturnedLine> containers;
    QList<CollectionSlip> collections;  ///< One, but for simple payments, which may share a number.
    QList<JournalPayment> payments;     ///< In the order of their sending.
    QList<NotedPrint> prints;
    std::optional<platform::Won> balance;  ///< The customer's present receivable; nothing for an unknown one.

    /// Goods as the customer pays them, rounded in the user's VAT mode, and deposits, in won.
    platform::Won goodsTotal() const;
    /// What the containers taken back are worth, in won.
    platform::Won containerWorth() const;
    /// The collection of the visit; null without one, or when there are simple payments alone.
    const CollectionSlip* collection() const;
    /// True while it is open whether a payment of the visit was charged.
    bool hasOpenPayment() const;
};

/// All visits of the day by number, user and customer; of one user or, with an empty id, of everybody.
/// Payments that charged nothing make no visit by themselves. Nothing when the tables could not be read to
/// the end.
std::optional<QList<Visit>> visitsOfDay(QStringView date, QStringView userId);

/// The visits under one number: more than one where it has several users or customers.
std::optional<QList<Visit>> visitsOfNumber(QStringView date, QStringView junNo, QStringView userId);

/// The user's days in the week before `date` that have a visit and no close, the oldest first; with an empty
/// id the days on which some user has not closed.
QStringList unclosedDays(QStringView userId, QStringView date);

}  // namespace books
