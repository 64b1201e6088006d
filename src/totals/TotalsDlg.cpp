#include "totals/TotalsDlg.h"

#include <QLabel>
#include <QPlainTextEdit>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "print/PrintJob.h"
#include "totals/DailyReports.h"
#include "totals/ReportDlg.h"
#include "ui/Messages.h"
#include "ui/WaitCursor.h"
#include "van/HostRequest.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kSummaryButton = 1022;

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

void showDailyReport(const DailyReport& daily) {
    std::optional<Report> report;
    {
        const ui::WaitCursor cursor;
        report = daily.make(app::session().WorkDate, app::session().UserID);
    }
    if (report) {
        showReport(*report);
    } else {
        ui::message(u"자료를 읽지 못해 집계하지 못했습니다..!"_s);
    }
}

}  // namespace

CTotalsDlg::CTotalsDlg() : Screen(app::dialogs::kTotals), component_(this) {
    addLabel(0, u"영업/HOST집계"_s, {4, 4, 232, 26}, ui::FontHeight::Title, Qt::AlignCenter);
    addLabel(0, app::session().UserID + u' ' + app::session().UserField2 + u"  "_s + app::session().WorkDate,
             {4, 30, 232, 22}, ui::FontHeight::Small, Qt::AlignCenter);
    for (const DailyReport& report : dailyReports()) {
        addWork(report.button, report.caption.toString(), [&report] { showDailyReport(report); });
    }
    addWork(kSummaryButton, u"HOST집계"_s, [this] { request(); });
    log_.emplace(component_, place(1146, new QPlainTextEdit(this), {2, 202, 236, 78}),
                 [this] { return readReply(); });
    connect(&*log_, &van::ExchangeLog::ended, this, [this] { exchangeEnded(); });
    ui::BitmapButton* done = addButton(1003, u"닫  기"_s, {182, 284}, ui::bitmaps::kCancel);
    connect(done, &ui::BitmapButton::clicked, this, [this] {
        if (!log_->isExchanging()) close(Cancelled);
    });
    setCancelButton(done);
}

void CTotalsDlg::addWork(int controlId, const QString& caption, std::function<void()> work) {
    const QPoint place(4 + works_ % 2 * 118, 56 + works_ / 2 * 36);
    ui::BitmapButton* button = addButton(controlId, caption, place, ui::bitmaps::kHalfDocument);
    connect(button, &ui::BitmapButton::clicked, this, [this, work = std::move(work)] {
        if (!log_->isExchanging()) work();
    });
    ++works_;
}

void CTotalsDlg::request() {
    log_->begin();
    // The hidden button would hand the focus to the closing one.
    setFocus();
    control(kSummaryButton)->hide();
    repaint();
    log_->set(u"HOST집계요청 중입니다.."_s);
    summary_ = {};
    log_->append(van::sendRequest(component_, van::RequestKind::Summary, app::transactionRecord()));
}

QString CTotalsDlg::readReply() {
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

void CTotalsDlg::exchangeEnded() {
    control(kSummaryButton)->show();
    if (summary_.responseCode == u"0000") {
        print::printDocument(
            print::hostSummarySlip(summary_, app::session().UserField2, app::session().WorkDate));
    } else {
        ui::message(u"하단의 전문에러값을 확인하세요!!"_s);
    }
    repaint();
}

}  // namespace totals
