#include "container/screens/ContainerListDlg.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "container/ContainerStore.h"
#include "ui/Messages.h"

namespace container {

using namespace Qt::Literals::StringLiterals;

CContainerListDlg::CContainerListDlg()
    : SlipListScreen(app::dialogs::kContainerList, app::dialogs::kContainerSlip) {
    addHeading(65535, ui::bitmaps::kSlipsHeading, u"용공회수전표"_s);
    addSlips({0, 34, 240, 248}, u"용공회수전표 목록"_s,
             {{u"전표"_s, 50}, {u"거래처명"_s, 180}, {u"코드"_s, 50}});
    addButtons(u"추 가"_s, u"용공회수내역을 삭제할까요?"_s, u"용공회수내역 삭제"_s);
}

platform::Rows CContainerListDlg::loadSlips() {
    app::ActionValues& action = app::session().action;
    action.JunNo.clear();
    action.GCode.clear();
    action.GName.clear();
    action.SelectedContainerGName.clear();
    return slipsOfDay(app::session().UserID, app::session().WorkDate);
}

void CContainerListDlg::takeSlip(const platform::Rows& slips, int row) {
    app::ActionValues& action = app::session().action;
    action.JunNo = slips.at(row, 0);
    action.GName = action.SelectedContainerGName = slips.at(row, 1);
    action.GCode = slips.at(row, 2);
}

void CContainerListDlg::deleteSlip() {
    const app::SessionValues& session = app::session();
    const auto takenBack = container::deleteSlip(session.WorkDate, session.action.JunNo, session.UserID);
    // No word about one that could not be deleted: the list still shows it. The credit for the containers
    // goes with their slip.
    if (takenBack && !takenBack->isZero()) {
        ui::message(u"입금전표의 용공회수액 ['%1'원]을 취소하였습니다..!"_s.arg(
            platform::groupDigits(platform::formatWon(*takenBack))));
    }
}

}  // namespace container
