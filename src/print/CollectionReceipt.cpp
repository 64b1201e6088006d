#include "print/CollectionReceipt.h"

#include <QStringBuilder>

#include "books/PaymentJournal.h"

namespace print {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

/// A line for an amount that is there.
void amountLine(Document& document, QStringView label, Won amount) {
    if (!amount.isZero()) document.labelAmount(label, amount);
}

}  // namespace

void transactionNumberLine(Document& document, QStringView transactionNumber) {
    if (!transactionNumber.isEmpty()) document.line(QString(u"거래번호 : " % transactionNumber));
}

void paymentBlock(Document& document, const books::CollectionSlip& slip) {
    const auto open = books::unsettledPayment(slip.DDate, slip.JunNo, slip.UserID);
    // Without a host to ask the card amount is what the salesman says.
    const bool isApproved = slip.isApproved() || open;
    amountLine(document, isApproved ? u"카드입금"_s : u"카드입금(%1)"_s.arg(books::kNotApproved),
               slip.CardMoney);
    amountLine(document, u"현금입금", slip.WonMoney);
    amountLine(document, u"미결제액", slip.UnderMoney);
    amountLine(document, u"용공회수액", slip.YDMoney);
    amountLine(document, u"전미수입금", slip.MisuInMoney);
    if (open) document.labelAmount(books::kBeingAsked, open->charged);
    document.rule(Document::Rule::Thin);
    const Won before = books::previousReceivable(slip.GCode, slip.DDate, slip.JunNo, slip.UserID);
    document.labelAmount(u"전미수", before);
    document.labelAmount(u"총미수", before + slip.receivableEffect());
    transactionNumberLine(document, slip.BANKTRANNO);
}

std::optional<Document> collectionSlip(QStringView date, QStringView junNo, QStringView userId, Copy copy,
                                       bool reprint) {
    const std::optional<books::CollectionSlip> slip = books::loadCollection(date, junNo, userId);
    if (!slip) return std::nullopt;

    Document document =
        slipDocument(u"입  금  표", copy, reprint,
                     {date, slip->DTime, junNo, salesman(userId), customer(slip->GCode, slip->GName)});
    if (slip->Gubun != books::kCollectionAlone || !slip->MMoney.isZero() || !slip->YGMoney.isZero()) {
        amountLine(document, u"공급가액", slip->PMoney);
        amountLine(document, u"부가세액", slip->BMoney);
        amountLine(document, u"보증금액", slip->YGMoney);
        document.labelAmount(u"매출합계", slip->MMoney + slip->YGMoney);
        amountLine(document, u"비주류금액", slip->GDMoney);
        document.rule(Document::Rule::Thin);
    }
    paymentBlock(document, *slip);
    closingBlock(document);
    return document;
}

}  // namespace print
