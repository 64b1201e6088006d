#include "totals/screens/SummaryExchange.h"

#include "books/TransactionRecord.h"
#include "van/screens/HostRequest.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;

/// The fields of the reply in the order in which they are read.
struct SummaryField {
    short number;
    QString print::HostSummary::*text;
};
constexpr SummaryField kFields[] = {
    {1102, &print::HostSummary::responseCode},
    {1203, &print::HostSummary::responseText},
    {1002, &print::HostSummary::identification},
    {1115, &print::HostSummary::transferCount},
    {1116, &print::HostSummary::supply},
    {1117, &print::HostSummary::vat},
    {1118, &print::HostSummary::deposit},
    {1119, &print::HostSummary::collected},
    {1106, nullptr},  // Read with the others and thrown away.
    {1120, &print::HostSummary::transaction},
    {1121, &print::HostSummary::fee},
    {1122, &print::HostSummary::deposited},
};

// Only the reconciliation reads these.
constexpr short kListTotal = 1123;
constexpr short kList = 1124;

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
    return readHostDay(summary_, van::receivedField(component_, kListTotal),
                       van::receivedField(component_, kList));
}

QString SummaryExchange::readReply() {
    component_.RecvHeader();
    component_.RecvSummary();
    QString text = u"<응답값: "_s;
    for (const SummaryField& field : kFields) {
        const QString value = van::receivedField(component_, field.number);
        if (field.text != nullptr) summary_.*field.text = value;
        if (field.number == 1102 || field.number == 1203) text += u'[' + value + u']';
        if (field.number == 1121) text += u"수수료:"_s + value;
        if (field.number == 1122) text += u"이체액:"_s + value;
    }
    return text + u"> "_s;
}

}  // namespace totals
