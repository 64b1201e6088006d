#include "sales/screens/UnvisitedDlg.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "app/SlipListScreen.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;

CUnvisitedDlg::CUnvisitedDlg()
    : Screen(app::dialogs::kUnvisited),
      orders_(unvisitedOrders(app::session().UserID, app::session().WorkDate)) {
    addHeading(65535, ui::bitmaps::kSlipsHeading, u"미방문 주문"_s);
    list_ = addList(
        1054, {0, 34, 240, 248}, u"미방문 주문 목록"_s, {{u"거래처명"_s, 188}, {u"전표"_s, 50}}, [](int) {},
        [this] { take(); });
    list_->setEmptyText(u"미방문 주문이 없습니다."_s);
    list_->setDetail([this](const platform::Rows&, int row) {
        return ui::RowDetail{orders_[row].tel, app::wonText(orders_[row].amount)};
    });
    platform::Rows rows;
    rows.columns = 2;
    for (const UnvisitedOrder& order : std::as_const(orders_)) rows.cells << order.gName << order.junNo;
    list_->setRows(rows);
    addLeaveButton(1003, u"취  소"_s);
    addMainButton(1000, u"확  인"_s, [this] { take(); });
    list_->setFocus();
}

void CUnvisitedDlg::take() {
    const int row = list_->selectedRow();
    if (row < 0) {
        ui::message(orders_.isEmpty() ? u"미방문 주문이 없습니다..!"_s : u"전표를 선택하세요!"_s);
        return;
    }
    app::ActionValues& action = app::session().action;
    action.JunNo = orders_[row].junNo;
    action.GName = orders_[row].gName;
    // The slip's own lines say who the customer is.
    action.GCode.clear();
    close(Accepted);
}

}  // namespace sales
