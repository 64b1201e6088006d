#include "totals/screens/SummaryExchange.h"

#include "books/TransactionRecord.h"
#include "platform/message/Fields.h"
#include "van/screens/HostRequest.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::message;

/// The fields of the reply in the order in which they are read.
struct SummaryField {
    quint16 number;
    QString print::HostSummary::*text;
};
constexpr SummaryField kFields[] = {
    {kResponseCodeField, &print::HostSummary::responseCode},
    {kResponseTextField, &print::HostSummary::responseText},
    {kIdentificationField, &print::HostSummary::identification},
    {kTransferCountField, &print::HostSummary::transferCount},
    {kSupplyTotalField, &print::HostSummary::supply},
    {kVatTotalField, &print::HostSummary::vat},
    {kDepositTotalField, &print::HostSummary::deposit},
    {kRecoveryTotalField, &print::HostSummary::collected},
    {kDepositedField, nullptr},  // Read with the others and thrown away.
    {kAmountTotalField, &print::HostSummary::transaction},
    {kFeeTotalField, &print::HostSummary::fee},
    {kTransferTotalField, &print::HostSummary::deposited},
};

}  // namespace

SummaryExchange::SummaryExchange(QWidget* screen, QPlainTextEdit* box)
    : component_(screen), log_(component_, box, [this] { return readReply(); }) {
    connect(&log_, &van::ExchangeLog::ended, this, &SummaryExchange::ended);
}

void SummaryExchange::request(const QString& opening, const QDate& day) {
    if (log_.isExchanging()) return;
    log_.begin();
    log_.set(opening);
    summary_ = {};
    log_.append(van::sendRequest(component_, van::RequestKind::Summary, books::transactionRecord(), {}, day));
}

HostDay SummaryExchange::hostDay() {
    return readHostDay(summary_, van::receivedField(component_, kListTotalField),
                       van::receivedField(component_, kListField));
}

QString SummaryExchange::readReply() {
    component_.RecvHeader();
    component_.RecvSummary();
    QString text = u"<응답값: "_s;
    for (const SummaryField& field : kFields) {
        const QString value = van::receivedField(component_, field.number);
        if (field.text != nullptr) summary_.*field.text = value;
        if (field.number == kResponseCodeField || field.number == kResponseTextField)
            text += u'[' + value + u']';
        if (field.number == kFeeTotalField) text += u"수수료:"_s + value;
        if (field.number == kTransferTotalField) text += u"이체액:"_s + value;
    }
    return text + u"> "_s;
}

}  // namespace totals
