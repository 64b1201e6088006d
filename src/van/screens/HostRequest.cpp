#include "van/screens/HostRequest.h"

#include <algorithm>

#include "books/Charge.h"
#include "platform/Clock.h"
#include "platform/message/Fields.h"

namespace van {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::formatWon;
using platform::parseInteger;
using namespace platform::message;

constexpr short kTimeOutSeconds = 30;
/// The card data leaves the track's first character out and has at most this many.
constexpr qsizetype kCardDataLength = 104;

/// Calls of the component whose failures are worded.
enum class Call { SavedValue, Header, Payment, Balance, PreviousTransaction, Summary, Exchange };

struct Wording {
    Call call;
    short status;
    QStringView text;
    /// Of an exchange, when a payment or the previous transaction was asked for.
    QStringView ofPayment = {};
};
constexpr Wording kWordings[] = {
    {Call::SavedValue, -100, u" * Err -> 입력값이상"},
    {Call::SavedValue, -806, u" * Err -> 저장값 읽기실패"},
    {Call::SavedValue, -807, u" * Err -> 저장값이 해당항목없음"},
    {Call::Header, -806, u" * HeaderReq -> download 저장값 읽기실패"},
    {Call::Header, -807, u" * HeaderReq -> download 저장값이 해당 항목 없음"},
    {Call::Balance, -100, u" * BalanceReq -> 입력값이상"},
    {Call::Balance, -801, u" * BalanceReq -> 공개키정보 파일 없음"},
    {Call::Balance, -804, u" * BalanceReq -> 공개키정보 읽기에러"},
    {Call::Balance, -901, u" * BalanceReq -> 암호화 - 초기화 에러"},
    {Call::Balance, -902, u" * BalanceReq -> 암호화 - KEY 생성 에러"},
    {Call::Balance, -903, u" * BalanceReq -> 암호화 - 공개키 생성 에러"},
    {Call::Summary, -100, u" * setSummaryReq -> 입력값이상"},
    {Call::Exchange, -100, u" * Commun -> 입력값이상", u" * Err -> 입력값이상"},
    {Call::Exchange, -504, u" * Commun -> 통신초기화 에러"},
    {Call::Exchange, -500, u" * Commun -> 접속에러"},
    {Call::Exchange, -801, {}, u" * Err -> 공개키 정보없음"},
    {Call::Exchange, -804, {}, u" * Err -> 공개키정보 읽기에러"},
    {Call::Exchange, -901, {}, u" * Err -> 암호화-초기화 에러"},
    {Call::Exchange, -902, {}, u" * Err -> 암호화Key 생성에러"},
    {Call::Exchange, -903, {}, u" * Err -> 암호화*공개키 생성에러"},
};

/// The log text of a call's status code; empty for 0 and for a code that the call does not word.
QString failureText(Call call, RequestKind kind, short status) {
    if (status == 0) return {};
    if (call == Call::PreviousTransaction) return u" * setPreTradeRep -> 직전거래요청 실패"_s;
    const bool isInquiry = kind == RequestKind::Balance || kind == RequestKind::Summary;
    // A missing saved value is worded for payments and the previous transaction only.
    if (call == Call::Header && status == -807 && isInquiry) return {};
    // The payment request's failures go by the balance request's name.
    const Call named = call == Call::Payment ? Call::Balance : call;
    const auto* const found = std::ranges::find_if(
        kWordings, [&](const Wording& wording) { return wording.call == named && wording.status == status; });
    if (found == std::end(kWordings)) return {};
    return (call == Call::Exchange && !isInquiry ? found->ofPayment : found->text).toString();
}

QStringView messageKind(RequestKind kind) {
    switch (kind) {
        case RequestKind::CardPayment: return kCardPayment;
        case RequestKind::CashPayment: return kCashPayment;
        case RequestKind::Balance: return kBalanceInquiry;
        case RequestKind::PreviousTransaction: return kPreviousTransaction;
        case RequestKind::Summary: return kSummary;
    }
    return {};
}

QString savedValue(CKsnet_msg_lib& component, QStringView key, RequestKind kind, QString* failures) {
    QString value;
    *failures += failureText(Call::SavedValue, kind, component.GetSavedValue(key, &value));
    return value;
}

QString requestPayment(CKsnet_msg_lib& component, RequestKind kind, const books::TransactionRecord& record) {
    const books::SettlementAmounts& amounts = record.amounts;
    const bool hasRecovery = amounts.containerRecovery >= platform::Won(1);
    // The recovery's flag travels before the amount that it is computed from.
    const short status =
        component.PaymentReq(u"123", u"        ", record.track3.view().mid(1, kCardDataLength),
                             record.password.view(), u"39", formatWon(amounts.supply), formatWon(amounts.vat),
                             formatWon(amounts.deposit), hasRecovery ? u"1" : u"0",
                             formatWon(amounts.containerRecovery), formatWon(books::amountToSettle(amounts)));
    return failureText(Call::Payment, kind, status);
}

QString request(CKsnet_msg_lib& component, RequestKind kind, const books::TransactionRecord& record,
                const QDate& day) {
    const QDateTime now = platform::clock::now();
    const QString time = now.toString(u"hhmmss"_s);
    switch (kind) {
        case RequestKind::CardPayment:
        case RequestKind::CashPayment: return requestPayment(component, kind, record);
        case RequestKind::Balance:
            return failureText(Call::Balance, kind,
                               component.BalanceReq(time, record.track3.view().mid(1, kCardDataLength),
                                                    record.password.view(), u"39"));
        case RequestKind::PreviousTransaction:
            return failureText(Call::PreviousTransaction, kind, component.setPreTradeRep());
        case RequestKind::Summary:
            return failureText(
                Call::Summary, kind,
                component.setSummaryReq(time, (day.isValid() ? day : now.date()).toString(u"yyyyMMdd"_s)));
    }
    return {};
}

}  // namespace

QString hostAddress(QStringView savedDigits) {
    if (savedDigits.contains(u':')) return savedDigits.toString();
    QStringList octets;
    for (qsizetype at = 0; at < 12; at += 3) octets += QString::number(parseInteger(savedDigits.mid(at, 3)));
    return octets.join(u'.');
}

QString sendRequest(CKsnet_msg_lib& component, RequestKind kind, const books::TransactionRecord& record,
                    const std::function<bool(const QString& number)>& mayLeave, const QDate& day) {
    QString failures;
    const QString address = hostAddress(savedValue(component, u"221", kind, &failures));
    const std::int64_t savedPort = parseInteger(savedValue(component, u"222", kind, &failures));
    // The component takes the port's 16 bits; a value that is no port is none.
    const auto port = static_cast<short>(savedPort >= 0 && savedPort <= 65535 ? savedPort : 0);
    // The summary also reads this value, which goes nowhere.
    if (kind == RequestKind::Summary) savedValue(component, u"101", kind, &failures);
    failures += failureText(
        Call::Header, kind,
        component.HeaderReq(u"JB", u"84", u"00", u"1234567890", u"    ", kRequestType, messageKind(kind)));
    failures += request(component, kind, record, day);
    // A payment that could not be sealed cannot leave; its exchange is tried all the same.
    const auto number = component.component().paymentNumber();
    if (mayLeave && number && !mayLeave(platform::message::toText(*number))) return failures;
    failures += failureText(Call::Exchange, kind, component.Commun(address, port, kTimeOutSeconds, 0));
    return failures;
}

QString askAbout(CKsnet_msg_lib& component, QStringView number) {
    if (const auto asked = platform::message::parseMessageNumber(number))
        component.component().askAbout(*asked);
    return sendRequest(component, RequestKind::PreviousTransaction, books::transactionRecord());
}

QString receivedField(CKsnet_msg_lib& component, short number) {
    QString text;
    component.GetRecvField(number, &text);
    return text;
}

QString readReply(CKsnet_msg_lib& component, books::RequestType type, books::HostReply* reply) {
    component.RecvHeader();
    if (type == books::RequestType::BalanceInquiry) component.RecvBalance();
    if (type == books::RequestType::Payment) component.RecvPayment();
    if (type == books::RequestType::PreviousTransaction) component.RecvPreTrade();
    reply->responseCode = receivedField(component, kResponseCodeField);
    reply->responseText = receivedField(component, kResponseTextField);
    if (type == books::RequestType::BalanceInquiry) {
        reply->balanceSign = receivedField(component, kBalanceSignField);
        reply->accountBalance = receivedField(component, kBalanceField);
        reply->withdrawalLimit = receivedField(component, kLimitField);
    } else {
        reply->transactionNumber = receivedField(component, kTransactionField);
        reply->identification = receivedField(component, kIdentificationField);
        reply->balanceSign = receivedField(component, kBalanceSignField);
        reply->transactionAmount = receivedField(component, kAmountField);
        reply->feeAmount = receivedField(component, kFeeField);
        reply->depositedAmount = receivedField(component, kDepositedField);
        reply->remainingAmount = receivedField(component, kRemainingField);
    }
    return u"<응답값: [%1][%2]> "_s.arg(reply->responseCode, reply->responseText);
}

}  // namespace van
