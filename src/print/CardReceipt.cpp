#include "print/CardReceipt.h"

#include "books/Customer.h"
#include "print/CollectionReceipt.h"
#include "print/SlipBlocks.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::parseWon;

std::optional<books::CollectionSlip> paidSlip(QStringView date, QStringView junNo, QStringView userId,
                                              const std::optional<CardExchange>& exchange) {
    std::optional<books::CollectionSlip> slip = books::loadCollection(date, junNo, userId);
    // A second payment under the same number has a row of its own.
    if (slip && exchange && slip->BANKTRANNO != exchange->reply.transactionNumber) {
        slip = books::findByTransactionNumber(exchange->reply.transactionNumber);
        if (slip && (slip->DDate != date || slip->JunNo != junNo || slip->UserID != userId)) slip.reset();
    }
    if (slip && !slip->isSimplePayment()) slip.reset();
    return slip;
}

void hostAmounts(Document& document, const books::HostReply& reply) {
    document.labelAmount(u"거래금액 : ", parseWon(reply.transactionAmount));
    document.labelAmount(u"수수료액 : ", parseWon(reply.feeAmount));
    document.labelAmount(u"입금금액 : ", parseWon(reply.depositedAmount));
    document.labelAmount(u"거래잔액 : ", parseWon(reply.remainingAmount));
}

void exchangeLines(Document& document, const CardExchange& exchange) {
    document.labelText(u"카드번호", exchange.maskedCardNumber);
    document.labelText(u"식별정보", exchange.reply.identification);
}

/// The customer as a receipt names him, from GARAE; texts of X where he is not found.
Party receiptCustomer(QStringView gCode) {
    const books::Customer customer = books::cardCustomer(gCode);
    return {customer.GName, customer.Sno, customer.Gupju, customer.Juso, {}};
}

}  // namespace

Document cardReceipt(const books::CollectionSlip& slip, const std::optional<CardExchange>& exchange,
                     bool reprint) {
    Document document = slipDocument(
        u"카 드 영 수 증", std::nullopt, reprint,
        {slip.DDate, slip.DTime, slip.JunNo, salesman(slip.UserID), receiptCustomer(slip.GCode)});
    document.labelAmount(u"공급가액", slip.PMoney);
    document.labelAmount(u"부가세액", slip.BMoney);
    if (!slip.GDMoney.isZero()) document.labelAmount(u"비주류금액", slip.GDMoney);
    if (!slip.YDMoney.isZero()) document.labelAmount(u"용공회수액", slip.YDMoney);
    document.rule(Document::Rule::Thin);
    // The recovery is off the total already and is taken off once more when the card is charged.
    document.labelAmount(u"합계", slip.amounts().total);
    document.labelAmount(u"결제금액", slip.CardMoney.isZero() ? slip.WonMoney : slip.CardMoney);
    document.rule(Document::Rule::Thin);
    if (exchange) {
        hostAmounts(document, exchange->reply);
    } else {
        document.labelAmount(u"거래금액 : ", slip.CardMoney);
    }
    transactionNumberLine(document, slip.BANKTRANNO);
    if (exchange) exchangeLines(document, *exchange);
    closingBlock(document);
    return document;
}

std::optional<Document> cardReceipt(QStringView date, QStringView junNo, QStringView userId,
                                    const std::optional<CardExchange>& exchange, bool reprint) {
    const std::optional<books::CollectionSlip> slip = paidSlip(date, junNo, userId, exchange);
    return slip ? std::optional(cardReceipt(*slip, exchange, reprint)) : std::nullopt;
}

Document hostReceipt(QStringView date, QStringView userId, const CardExchange& exchange) {
    const auto slip = books::findByTransactionNumber(exchange.reply.transactionNumber);
    const Party party = slip ? customer(slip->GCode, slip->GName) : receiptCustomer({});
    const SlipHead head = slip
                              ? SlipHead{slip->DDate, slip->DTime, slip->JunNo, salesman(slip->UserID), party}
                              : SlipHead{date, {}, {}, salesman(userId), party};
    Document document = slipDocument(u"카 드 영 수 증", std::nullopt, true, head);
    hostAmounts(document, exchange.reply);
    transactionNumberLine(document, exchange.reply.transactionNumber);
    exchangeLines(document, exchange);
    closingBlock(document);
    return document;
}

}  // namespace print
