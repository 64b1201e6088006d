#include "totals/screens/TotalsDlg.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <utility>

#include "app/Dialogs.h"
#include "app/KeypadRequest.h"
#include "app/PaymentQuestion.h"
#include "app/Session.h"
#include "books/PaymentJournal.h"
#include "db/Health.h"
#include "print/PrintJob.h"
#include "totals/DailyReports.h"
#include "totals/DayClose.h"
#include "totals/VisitReport.h"
#include "totals/screens/ReportDlg.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"
#include "ui/WaitCursor.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;

enum Control { kSummaryButton = 1022, kReconcileButton = 1023, kCloseButton = 1024, kWhoLabel = 1059 };

constexpr QStringView kUnread = u"자료를 읽지 못해 집계하지 못했습니다..!";

void settlePayments() {
    if (books::hasUnsettledPayments()) ui::runScreen(app::dialogs::kPaymentCheck);
    app::takeBackUnpaid();
}

void showDailyReport(const DailyReport& daily) {
    std::optional<Report> report;
    {
        const ui::WaitCursor cursor;
        report = daily.make(app::session().WorkDate, app::session().UserID);
    }
    if (report) {
        showReport(*report);
    } else {
        ui::message(kUnread.toString());
    }
}

}  // namespace

CTotalsDlg::CTotalsDlg() : Screen(app::dialogs::kTotals) {
    addLabel(0, u"영업/HOST집계"_s, {4, 4, 232, 26}, ui::FontHeight::Title, Qt::AlignCenter);
    addLabel(kWhoLabel, {}, {4, 30, 232, 22}, ui::FontHeight::Small, Qt::AlignCenter);
    showChanges();
    for (const DailyReport& report : dailyReports()) {
        addWork(report.button, report.caption.toString(), [&report] { showDailyReport(report); });
    }
    addWork(kSummaryButton, u"HOST집계"_s,
            [this] { ask(u"HOST집계요청 중입니다.."_s, {}, [this] { printSummary(); }); });
    addWork(kReconcileButton, u"대사"_s, [this] {
        // A payment whose outcome is open would be a difference that is none.
        settlePayments();
        const QDate day = QDate::fromString(app::session().WorkDate, u"yyyy-MM-dd"_s);
        ask(u"HOST대사요청 중입니다.."_s, day, [this, day] { reconcile(day); });
    });
    addWork(kCloseButton, u"일마감"_s, [this] {
        settlePayments();
        closeDay();
        showChanges();
    });
    exchange_.emplace(this, place(1146, new QPlainTextEdit(this), {2, 202, 236, 78}));
    connect(&*exchange_, &SummaryExchange::ended, this, [this] { exchangeEnded(); });
    buttons_ << addLeaveButton(1003, u"닫  기"_s);
}

void CTotalsDlg::addWork(int controlId, const QString& caption, std::function<void()> work) {
    const int works = int(buttons_.size());
    const QPoint place(ui::kGridLeft + works % 2 * 2 * ui::kGridPitch, 56 + works / 2 * 36);
    buttons_ << addButton(controlId, caption, place, ui::bitmaps::kHalfDocument, std::move(work));
}

void CTotalsDlg::enableButtons(bool areEnabled) {
    for (ui::BitmapButton* button : buttons_) button->setEnabled(areEnabled);
}

void CTotalsDlg::ask(const QString& opening, const QDate& day, std::function<void()> answered) {
    answered_ = std::move(answered);
    // The hidden button would hand the focus to another one.
    setFocus();
    control(kSummaryButton)->hide();
    enableButtons(false);
    repaint();
    exchange_->request(opening, day);
}

void CTotalsDlg::exchangeEnded() {
    control(kSummaryButton)->show();
    enableButtons(true);
    if (exchange_->isApproved()) {
        answered_();
    } else {
        ui::message(u"하단의 전문에러값을 확인하세요!!"_s);
    }
    repaint();
}

void CTotalsDlg::printSummary() {
    print::printDocument(
        print::hostSummarySlip(exchange_->summary(), app::session().UserField2, app::session().WorkDate),
        ui::WaitCursor::alive);
}

void CTotalsDlg::reconcile(const QDate& day) {
    std::optional<Reconciliation> result;
    {
        const ui::WaitCursor cursor;
        result = totals::reconcile(day, exchange_->hostDay());
    }
    if (result) {
        showReport(reconciliationReport(day, *result));
    } else {
        ui::message(kUnread.toString());
    }
}

void CTotalsDlg::checkVisits() {
    app::SessionValues& session = app::session();
    std::optional<VisitCheck> check;
    {
        const ui::WaitCursor cursor;
        check = checkDays({session.WorkDate}, session.UserID);
    }
    if (!check) {
        ui::message(kUnread.toString());
    } else if (!check->isEmpty()) {
        session.action.CheckedDays = {session.WorkDate};
        ui::runScreen(app::dialogs::kVisitCheck);
    }
}

void CTotalsDlg::closeDay() {
    const app::SessionValues& session = app::session();
    const auto before = closesOfDay(session.WorkDate, session.UserID);
    if (before && !before->isEmpty()) {
        const auto changes = changesAfterClose(session.WorkDate, *before);
        const QString question =
            changes && !changes->isEmpty()
                ? u"마감 후 변경이 %1건 있습니다. %2차 마감할까요?"_s.arg(changes->size())
                      .arg(before->size() + 1)
                : u"이미 마감하였습니다. 다시 마감할까요?"_s;
        if (!ui::confirm(question, u"일마감"_s)) {
            showClose(*before);
            return;
        }
    }
    checkVisits();
    // Asked before any figure is shown that the count could be made to fit.
    if (!app::askNumber(u"현금시재"_s)) return;
    const platform::Won counted = platform::parseWon(app::keypadRequest().KeypadValue1);
    // Who paid out more for empties than he took in has laid out his own money.
    if (counted < platform::Won() &&
        !ui::confirm(u"현금시재가 0원보다 작습니다. 받은 현금보다 내준 현금이 많습니까?"_s, u"일마감"_s))
        return;
    std::optional<QList<DayClose>> closes;
    {
        const ui::WaitCursor cursor;
        closes = totals::closeDay(session.WorkDate, session.UserID, counted);
    }
    if (closes) {
        showClose(*closes);
    } else {
        ui::message(db::needsUpgrade() ? db::kUpgradeAdvice.toString() : u"마감을 저장하지 못했습니다..!"_s);
    }
}

void CTotalsDlg::showClose(const QList<DayClose>& closes) {
    const app::SessionValues& session = app::session();
    const auto changes = changesAfterClose(session.WorkDate, closes);
    if (!changes) {
        ui::message(kUnread.toString());
        return;
    }
    showReport({dayCloseReport(session.WorkDate, closes, *changes), !closes.last().printedAt.isEmpty(),
                [&] { noteStripPrinted(session.WorkDate, session.UserID); }});
}

void CTotalsDlg::showChanges() {
    const app::SessionValues& session = app::session();
    const auto closes = closesOfDay(session.WorkDate, session.UserID).value_or(QList<DayClose>());
    const auto changes = changesAfterClose(session.WorkDate, closes).value_or(QList<Row>());
    QString who = session.UserID + u' ' + session.UserField2 + u"  "_s + session.WorkDate;
    if (!changes.isEmpty()) who += u"  마감 후 변경 %1건"_s.arg(changes.size());
    setFittedText(kWhoLabel, who, ui::FontHeight::Small);
}

}  // namespace totals
