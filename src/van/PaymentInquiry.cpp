#include "van/PaymentInquiry.h"

#include <QDateTime>

#include "platform/Clock.h"

namespace van {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::parseWon;
using platform::Won;

constexpr QStringView kApproved = u"0000";
constexpr QStringView kNeverReceived = u"0019";
constexpr qint64 kSecondsOfDay = 24 * 60 * 60;

bool isSurely(const books::JournalPayment& payment, const books::HostReply& reply) {
    const QDateTime sent = QDateTime::fromString(payment.slip.MSGSENDTIME, u"yyyyMMddHHmmss"_s);
    const qint64 age = sent.isValid() ? sent.secsTo(platform::clock::now()) : -1;
    // Cash that was entered deposits nothing.
    const bool isCard = parseWon(reply.depositedAmount) > Won();
    return age >= 0 && age < kSecondsOfDay && parseWon(reply.transactionAmount) == payment.charged &&
           isCard == payment.isCard && books::isLastPayment(payment, reply.transactionNumber) &&
           !books::findByTransactionNumber(reply.transactionNumber);
}

}  // namespace

PaymentVerdict judge(const books::JournalPayment& payment, const books::HostReply& reply,
                     QStringView answeredNumber) {
    const bool isApproved = reply.responseCode == kApproved && !reply.transactionNumber.isEmpty();
    if (answeredNumber.compare(payment.number, Qt::CaseInsensitive) == 0) {
        if (isApproved) return PaymentVerdict::Approved;
        // An approval without its number cannot be put on a slip.
        return reply.responseCode == kApproved || reply.responseCode.isEmpty() ? PaymentVerdict::Open
                                                                               : PaymentVerdict::NotCharged;
    }
    return answeredNumber.isEmpty() && isApproved && isSurely(payment, reply) ? PaymentVerdict::Approved
                                                                              : PaymentVerdict::Open;
}

SettledPayment settle(const books::JournalPayment& payment, const books::HostReply& reply,
                      QStringView answeredNumber) {
    SettledPayment settled{judge(payment, reply, answeredNumber), false, std::nullopt};
    if (settled.verdict == PaymentVerdict::Approved) {
        settled.slip = books::approvePayment(payment.number, reply.transactionNumber);
        settled.isKept = settled.slip.has_value();
    } else if (settled.verdict == PaymentVerdict::NotCharged) {
        settled.isKept = books::settlePayment(payment.number, reply.responseCode == kNeverReceived
                                                                  ? books::PaymentState::Released
                                                                  : books::PaymentState::Refused);
    }
    return settled;
}

QString tellApprovedAmount(const books::HostReply& reply, Won asked) {
    const Won approved = parseWon(reply.transactionAmount);
    if (reply.transactionAmount.isEmpty() || approved == asked) return {};
    const auto grouped = [](Won amount) { return platform::groupDigits(platform::formatWon(amount)); };
    return u"승인금액 ['%1'원]이 결제금액 ['%2'원]과 다릅니다..! 거래번호 : %3  사무실에 확인하세요!!"_s.arg(
        grouped(approved), grouped(asked), reply.transactionNumber);
}

}  // namespace van
