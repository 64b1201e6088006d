#include "container/screens/ContainerListDlg.h"

#include <QLabel>

#include "app/Dialogs.h"
#include "app/PaymentQuestion.h"
#include "app/Session.h"
#include "container/ContainerStore.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"
#include "ui/WaitCursor.h"

namespace container {

using namespace Qt::Literals::StringLiterals;

CContainerListDlg::CContainerListDlg() : Screen(app::dialogs::kContainerList) {
    addPicture(65535, ui::bitmaps::kSlipsHeading, {0, 0});
    setTextColour(addLabel(0, u"용공회수전표"_s, {38, 0, 198, 31}, ui::FontHeight::Title), Qt::white);
    list_ = addList(1054, {0, 34, 240, 248});
    const ui::ListColumn columns[] = {{u"전표"_s, 50}, {u"거래처명"_s, 180}, {u"코드"_s, 50}};
    list_->setColumns(columns);
    describe(list_, u"용공회수전표 목록"_s);
    connect(list_, &ui::ReportList::rowClicked, this, &CContainerListDlg::choose);
    connect(list_, &ui::ReportList::rowDoubleClicked, this, [this](int row) {
        choose(row);
        openSlip();
    });

    setCancelButton(
        addBottomButton(1003, u"취  소"_s, 0, ui::bitmaps::kCancel, [this] { close(Cancelled); }));
    addBottomButton(1001, u"삭  제"_s, 1, ui::bitmaps::kDelete, [this] { deleteChosen(); });
    addBottomButton(1002, u"추 가"_s, 2, ui::bitmaps::kAdd,
                    [this] { runWork(app::dialogs::kConsonantBoard); });
    setDefaultButton(addBottomButton(1000, u"확  인"_s, 3, ui::bitmaps::kConfirm, [this] { openSlip(); }));

    fill();
    list_->setFocus();
}

void CContainerListDlg::fill() {
    const ui::WaitCursor wait;
    app::SessionValues& session = app::session();
    list_->setRows(slipsOfDay(session.UserID, session.WorkDate));
    // A refilled list shows no choice, so none is kept.
    session.action.JunNo.clear();
    session.action.GCode.clear();
    session.action.GName.clear();
    session.action.SelectedContainerGName.clear();
}

void CContainerListDlg::choose(int row) {
    app::ActionValues& action = app::session().action;
    action.JunNo = list_->text(row, 0);
    action.SelectedContainerGName = list_->text(row, 1);
    action.GName = action.SelectedContainerGName;
    action.GCode = list_->text(row, 2);
}

void CContainerListDlg::runWork(int dialogId) {
    ui::runScreen(dialogId);
    if (app::session().SlipDone == 1) {
        close(Accepted);
    } else {
        fill();
    }
}

void CContainerListDlg::openSlip() {
    if (app::session().action.JunNo.isEmpty()) {
        ui::message(u"전표를 선택하세요!"_s);
        return;
    }
    runWork(app::dialogs::kContainerSlip);
}

void CContainerListDlg::deleteChosen() {
    // The question comes first, also when nothing is chosen.
    if (!ui::confirm(u"용공회수내역을 삭제할까요?"_s, u"용공회수내역 삭제"_s)) return;
    const app::SessionValues& session = app::session();
    if (session.action.JunNo.isEmpty()) {
        ui::message(u"삭제할 전표를 선택하세요!"_s);
        return;
    }
    if (!app::mayDelete(session.WorkDate, session.action.JunNo, {})) return fill();
    const auto takenBack = deleteSlip(session.WorkDate, session.action.JunNo, session.UserID);
    // No word about one that could not be deleted: the list still shows it. The credit for the containers
    // goes with their slip.
    if (takenBack && !takenBack->isZero()) {
        ui::message(u"입금전표의 용공회수액 ['%1'원]을 취소하였습니다..!"_s.arg(
            platform::groupDigits(platform::formatWon(*takenBack))));
    }
    fill();
}

}  // namespace container
