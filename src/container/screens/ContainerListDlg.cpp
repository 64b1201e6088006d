#include "container/screens/ContainerListDlg.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "books/DaySlips.h"
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

app::ListedSlips CContainerListDlg::loadSlips() {
    app::ActionValues& action = app::session().action;
    action.JunNo.clear();
    action.GCode.clear();
    action.GName.clear();
    action.SelectedContainerGName.clear();
    const app::SessionValues& session = app::session();
    app::ListedSlips slips{.rows = slipsOfDay(session.UserID, session.WorkDate)};
    const books::DaySlips day(session.WorkDate, session.UserID);
    const auto worths = worthsOfDay(session.UserID, session.WorkDate);
    platform::Won total;
    for (int row = 0; row < slips.rows.count(); ++row) {
        const QString junNo = slips.rows.at(row, 0);
        const platform::Won worth = worths.value(junNo);
        total += worth;
        slips.details << ui::RowDetail{day.printState(books::Paper::ContainerReceipt, junNo),
                                       app::wonText(worth)};
    }
    if (!slips.rows.isEmpty()) slips.total = u"합계 "_s + app::wonText(total);
    return slips;
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
