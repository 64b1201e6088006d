#include "books/DaySlips.h"

#include <algorithm>

#include "books/CollectionSlip.h"
#include "books/PaymentJournal.h"

namespace books {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

DaySlips::DaySlips(QStringView date, QStringView userId)
    : collections_(slipsOfDay(date, userId).value_or(QList<CollectionSlip>())) {
    for (qsizetype i = 0; i < collections_.size(); ++i) byNumber_.insert(collections_[i].JunNo, i);
    for (const JournalPayment& payment : unsettledPayments()) {
        if (payment.slip.DDate == date && payment.slip.UserID == userId) open_ << payment.slip.JunNo;
    }
    for (const Paper paper : kPapers) printed_[paper] = printedNumbers(paper, date, userId);
}

const CollectionSlip* DaySlips::collection(const QString& junNo, const QString& gCode) const {
    const CollectionSlip* first = nullptr;
    for (const qsizetype place : byNumber_.values(junNo)) {
        const CollectionSlip& slip = collections_[place];
        if (slip.GCode == gCode && (first == nullptr || &slip < first)) first = &slip;
    }
    return first;
}

bool DaySlips::isCardUnapproved(const QString& junNo) const {
    return std::ranges::any_of(byNumber_.values(junNo), [this](qsizetype place) {
        const CollectionSlip& slip = collections_[place];
        return slip.CardMoney > Won() && !slip.isApproved() && !slip.isSimplePayment();
    });
}

QString DaySlips::paymentState(const QString& junNo) const {
    if (isPaymentOpen(junNo)) return u"확인중"_s;
    if (isCardUnapproved(junNo)) return u"카드%1"_s.arg(kNotApproved);
    const bool isApproved = std::ranges::any_of(
        byNumber_.values(junNo), [this](qsizetype place) { return collections_[place].isApproved(); });
    return isApproved ? u"결제"_s : QString();
}

QString DaySlips::printState(Paper paper, const QString& junNo) const {
    return printed_.value(paper).contains(junNo) ? u"발행"_s : u"미발행"_s;
}

Won received(const CollectionSlip& slip) {
    return slip.CardMoney + slip.cashTaken();
}

}  // namespace books
