#include "print/CardReceipt.h"

#include "app/CollectionSlip.h"
#include "db/Query.h"
#include "print/CollectionSlip.h"
#include "print/SlipBlocks.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::parseWon;

constexpr db::Statement<u"SELECT GName,Sno,Gupju, Juso  FROM GARAE WHERE GCODE = '%s'  "> kSelectCustomer;

constexpr qsizetype kShownInFront = 6;
constexpr qsizetype kShownBehind = 4;
constexpr qsizetype kFewestDigits = 13;  ///< A shorter number would show too much of itself.

std::optional<app::CollectionSlip> paidSlip(QStringView date, QStringView junNo, QStringView userId,
                                            const std::optional<CardExchange>& exchange) {
    std::optional<app::CollectionSlip> slip = app::loadCollection(date, junNo, userId);
    // A second payment under the same number has a row of its own.
    if (slip && exchange && slip->BANKTRANNO != exchange->reply.transactionNumber) {
        slip = app::findByTransactionNumber(exchange->reply.transactionNumber);
        if (slip && (slip->DDate != date || slip->JunNo != junNo || slip->UserID != userId)) slip.reset();
    }
    if (slip && !slip->isSimplePayment()) slip.reset();
    return slip;
}

void particulars(Document& document, const ReceiptCustomer& customer) {
    document.line(u"[공급받는자]");
    document.labelText(u"상호", customer.name);
    document.labelText(u"사업자번호", customer.number);
    document.labelText(u"대표자", customer.owner);
    document.labelText(u"주소", customer.address);
}

void hostAmounts(Document& document, const app::HostReply& reply) {
    document.labelAmount(u"거래금액 : ", parseWon(reply.transactionAmount));
    document.labelAmount(u"수수료액 : ", parseWon(reply.feeAmount));
    document.labelAmount(u"입금금액 : ", parseWon(reply.depositedAmount));
    document.labelAmount(u"거래잔액 : ", parseWon(reply.remainingAmount));
}

void exchangeLines(Document& document, const CardExchange& exchange) {
    document.labelText(u"카드번호", exchange.maskedCardNumber);
    document.labelText(u"식별정보", exchange.reply.identification);
}

}  // namespace

ReceiptCustomer receiptCustomer(QStringView gCode) {
    const std::optional<QStringList> row = db::firstRow(kSelectCustomer(gCode));
    if (!row) return {u"XXXX"_s, u"XXX-XX-XXXX"_s, u"XXXX"_s, u"XXXX"_s};
    return {row->value(0), row->value(1), row->value(2), row->value(3)};
}

std::optional<Document> cardReceipt(QStringView date, QStringView junNo, QStringView userId,
                                    const std::optional<CardExchange>& exchange, bool reprint) {
    const std::optional<app::CollectionSlip> slip = paidSlip(date, junNo, userId, exchange);
    if (!slip) return std::nullopt;
    const ReceiptCustomer customer = receiptCustomer(slip->GCode);

    Document document(u"카 드 영 수 증");
    if (reprint) document.centred(u"* 재발행 *");
    document.rule(Document::Rule::Double);
    slipBlock(document, date, slip->DTime, junNo, salesman(userId));
    document.rule(Document::Rule::Thin);
    sellerBlock(document);
    document.rule(Document::Rule::Thin);
    particulars(document, customer);
    document.rule(Document::Rule::Double);
    document.labelAmount(u"공급가액", slip->PMoney);
    document.labelAmount(u"부가세액", slip->BMoney);
    if (!slip->GDMoney.isZero()) document.labelAmount(u"비주류금액", slip->GDMoney);
    if (!slip->YDMoney.isZero()) document.labelAmount(u"용공회수액", slip->YDMoney);
    document.rule(Document::Rule::Thin);
    if (exchange) {
        hostAmounts(document, exchange->reply);
    } else {
        document.labelAmount(u"거래금액 : ", slip->CardMoney);
    }
    transactionNumberLine(document, slip->BANKTRANNO);
    if (exchange) exchangeLines(document, *exchange);
    document.rule(Document::Rule::Double);
    closingBlock(document);
    return document;
}

Document hostReceipt(QStringView date, QStringView userId, const CardExchange& exchange) {
    Document document(u"카 드 영 수 증");
    document.centred(u"* 재발행 *");
    document.rule(Document::Rule::Double);
    slipBlock(document, date, {}, {}, salesman(userId));
    document.rule(Document::Rule::Thin);
    sellerBlock(document);
    document.rule(Document::Rule::Thin);
    particulars(document, receiptCustomer({}));
    document.rule(Document::Rule::Double);
    hostAmounts(document, exchange.reply);
    transactionNumberLine(document, exchange.reply.transactionNumber);
    exchangeLines(document, exchange);
    document.rule(Document::Rule::Double);
    closingBlock(document);
    return document;
}

QString maskedCardNumber(QStringView track2) {
    while (!track2.isEmpty() && (track2.front() < u'0' || track2.front() > u'9')) track2 = track2.sliced(1);
    qsizetype digits = 0;
    while (digits < track2.size() && track2[digits] >= u'0' && track2[digits] <= u'9') ++digits;
    QString masked(digits, u'*');
    if (digits < kFewestDigits) return masked;
    for (qsizetype at = 0; at < digits; ++at) {
        if (at < kShownInFront || at >= digits - kShownBehind) masked[at] = track2[at];
    }
    return masked;
}

}  // namespace print
