#include "totals/screens/VisitCheckDlg.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"
#include "ui/WaitCursor.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;

VisitCheck check(const QStringList& days) {
    const ui::WaitCursor cursor;
    return checkDays(days, app::session().UserID).value_or(VisitCheck());
}

/// The work and the screen that open what stands of the visit.
struct Way {
    int workMode;
    int dialog;
};

Way wayTo(const books::Visit& visit) {
    if (!visit.goods.isEmpty()) return {app::kSalesWork, app::dialogs::kSalesSlip};
    if (visit.collection() != nullptr) return {app::kCollectionWork, app::dialogs::kCollectionEntry};
    if (!visit.containers.isEmpty()) return {app::kContainerWork, app::dialogs::kContainerSlip};
    if (visit.hasOpenPayment()) return {app::kTotalsWork, app::dialogs::kPaymentCheck};
    return {0, 0};
}

}  // namespace

CVisitCheckDlg::CVisitCheckDlg()
    : CVisitCheckDlg(app::session().action.CheckedDays, check(app::session().action.CheckedDays)) {}

CVisitCheckDlg::CVisitCheckDlg(const QStringList& days, const VisitCheck& found)
    : CReportDlg(app::dialogs::kVisitCheck, found.report), days_(days), check_(found) {
    list()->setEmptyText(u"맞지 않는 방문이 없습니다."_s);
    list()->setDetail([this](const platform::Rows&, int row) {
        const VisitCheck::Note note = check_.notes.value(row);
        return ui::RowDetail{note.reason, note.amounts};
    });
    // Not when the arrow keys pass a row.
    connect(list(), &ui::ReportList::rowTapped, this, &CVisitCheckDlg::openRow);
    addBottomButton(1001, u"열  기"_s, 2, ui::bitmaps::kPay, [this] {
        if (list()->selectedRow() < 0) {
            ui::message(u"전표를 선택하세요!"_s);
        } else {
            openRow(list()->selectedRow());
        }
    });
}

void CVisitCheckDlg::openRow(int row) {
    const std::optional<books::Visit> visit = check_.rows.value(row);
    if (!visit) return;
    openVisit(*visit);
    check_ = check(days_);
    setReport(check_.report);
}

void CVisitCheckDlg::openVisit(const books::Visit& visit) {
    const Way way = wayTo(visit);
    if (way.dialog == 0) {
        ui::message(u"이 방문의 전표가 없습니다..! 사무실에 확인하세요!!"_s);
        return;
    }
    app::SessionValues& session = app::session();
    const QString workDate = session.WorkDate;
    const int workMode = session.WorkMode;
    app::resetSession();
    session.WorkDate = visit.date;
    session.WorkMode = way.workMode;
    session.SlipDone = 0;
    session.action.JunNo = visit.junNo;
    session.action.GCode = visit.gCode;
    session.action.GName = visit.gName;
    session.action.SelectedContainerGName = visit.gName;
    session.action.SlipState = visit.printState;
    ui::runScreen(way.dialog);
    app::resetSession();
    session.WorkDate = workDate;
    session.WorkMode = workMode;
    session.SlipDone = 0;
    session.ReturnsToList = false;
}

}  // namespace totals
