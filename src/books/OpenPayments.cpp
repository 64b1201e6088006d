#include "books/OpenPayments.h"

#include <QDateTime>
#include <algorithm>
#include <utility>

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

bool isUnregistered(const JournalPayment& payment) {
    return payment.slip.GCode == kUnregisteredCustomer;
}

/// True when both may be the same customer's: he has one code, whatever number, date, user and kind of
/// payment; or both pay one slip. One who is not registered may be anybody who has a simple payment or is
/// charged the same amount.
bool mayBeSameCustomers(const JournalPayment& one, const JournalPayment& other) {
    const CollectionSlip& a = one.slip;
    const CollectionSlip& b = other.slip;
    if (a.DDate == b.DDate && a.JunNo == b.JunNo && a.UserID == b.UserID) return true;
    if (isUnregistered(one) || isUnregistered(other))
        return (a.isSimplePayment() && b.isSimplePayment()) || one.charged == other.charged;
    return !a.GCode.isEmpty() && a.GCode == b.GCode;
}

}  // namespace

std::optional<JournalPayment> findInTheWay(const QList<JournalPayment>& open, const JournalPayment& wanted) {
    const auto found = std::ranges::find_if(
        open, [&](const JournalPayment& each) { return mayBeSameCustomers(each, wanted); });
    return found == open.end() ? std::nullopt : std::optional(*found);
}

PaymentQuestion askAboutPayments(const FindPayment& find, const std::function<void()>& ask) {
    const auto before = find();
    if (!before) return {};
    ask();
    if (auto open = find()) return {PaymentAnswer::Open, std::move(open)};
    auto settled = findPayment(before->number);
    const bool isApproved = settled && settled->state == PaymentState::Approved;
    return {isApproved ? PaymentAnswer::Approved : PaymentAnswer::Free, std::move(settled)};
}

PaymentQuestion askBeforePaying(const JournalPayment& wanted, const std::function<void()>& ask) {
    const auto inTheWay = [&] { return findInTheWay(unsettledPayments(), wanted); };
    if (!inTheWay() && hasUnsettledPayments()) ask();
    PaymentQuestion question = askAboutPayments(inTheWay, ask);
    if (question.answer == PaymentAnswer::Approved) {
        const auto last = lastPayment(wanted.slip.DDate, wanted.slip.JunNo, wanted.slip.UserID);
        question.isPaid = last && last->number == question.inTheWay->number;
    }
    return question;
}

QString describePayment(const JournalPayment& payment) {
    const QDateTime sent = QDateTime::fromString(payment.slip.MSGSENDTIME, u"yyyyMMddHHmmss"_s);
    const QString time = sent.isValid() ? sent.toString(u"MM-dd HH:mm"_s) : payment.slip.DDate;
    return u"[%1] %2번 %3 %4결제 %5원"_s.arg(payment.slip.GName, payment.slip.JunNo, time,
                                             payment.isCard ? u"카드"_s : u"현금"_s,
                                             platform::groupDigits(platform::formatWon(payment.charged)));
}

QString refuseToPay(const JournalPayment& open) {
    return u"%1의 결과를 확인하지 못해 다시 결제할수 없습니다..! 카드사와 연결될때 다시 하세요!!"_s.arg(
        describePayment(open));
}

QString refuseToDelete(const JournalPayment& open) {
    return u"%1의 결과를 확인하지 못해 삭제할수 없습니다..! 카드사와 연결될때 다시 하세요!!"_s.arg(
        describePayment(open));
}

QString askToPutBack(const JournalPayment& approved) {
    return u"이미 승인된 결제가 있습니다..! %1 거래번호 : %2  이 결제를 전표에 되돌릴까요?"_s.arg(
        describePayment(approved), approved.slip.BANKTRANNO);
}

std::optional<CollectionSlip> payCredit(const CollectionSlip& row, const CollectionSlip& charged) {
    if (row.GCode != charged.GCode || row.isApproved() || row.isSimplePayment() || charged.isSimplePayment())
        return std::nullopt;
    const bool isBooked = row.CardMoney == charged.CardMoney && row.WonMoney == charged.WonMoney;
    const bool isCredit = row.CardMoney.isZero() && row.WonMoney.isZero() && row.UnderMoney > Won();
    if (!isBooked && !isCredit) return std::nullopt;
    CollectionSlip paid = row;
    paid.CardMoney = charged.CardMoney;
    paid.WonMoney = charged.WonMoney;
    paid.InMoney = charged.InMoney;
    if (!isBooked) paid.UnderMoney -= charged.InMoney;
    paid.MSGSENDTIME = charged.MSGSENDTIME;
    paid.BANKTRANNO = charged.BANKTRANNO;
    return paid;
}

CollectionSlip receivedWithoutSale(const CollectionSlip& charged) {
    CollectionSlip received = charged;
    received.setAmounts({}, {});
    received.Gubun = kCollectionAlone.toString();
    received.CardMoney = charged.CardMoney;
    received.WonMoney = charged.WonMoney;
    received.InMoney = charged.InMoney;
    return received;
}

}  // namespace books
