#include "sales/screens/PastOrdersDlg.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/TwoLineDelegate.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kList = 1054;
constexpr int kProductsColumn = 2;
constexpr int kRowHeight = 40;

}  // namespace

CPastOrdersDlg::CPastOrdersDlg() : Screen(app::dialogs::kPastOrders) {
    app::SessionValues& session = app::session();
    session.action.PastOrder = -1;
    history_ =
        PurchaseHistory::of(session.action.GCode, session.WorkDate, session.action.JunNo, session.UserID);
    addHeading(0, ui::bitmaps::kSlipsHeading, u"지난 주문"_s);
    fitText(addLabel(1059, {}, {4, 34, 232, 22}), session.action.GName, ui::FontHeight::Medium);
    ui::ReportList* list = addList(
        kList, {0, 58, 240, 224}, u"지난 주문"_s,
        {{u"날짜"_s, 76}, {u"합계"_s, 74, ui::kRight}, {u"품목"_s, 84, ui::kRight}},
        [this](int row) { chosen_ = row; }, [this] { confirm(); });
    platform::Rows rows{.columns = 3, .cells = {}};
    for (const PastSlip& slip : history_.slips().mid(0, PurchaseHistory::kOffered)) {
        rows.cells << slip.DDate << platform::groupThousands(slip.total)
                   << u"%1품목"_s.arg(slip.products.size());
    }
    new ui::TwoLineDelegate(list, kRowHeight, [this](const platform::Rows&, int row, int column) {
        const QList<Purchase>& products = history_.slips()[row].products;
        ui::TwoLineDelegate::Line line;
        if (column < products.size()) {
            line.text = products[column].PName + u' ' + shortQuantityText(products[column].quantities);
            if (column == kProductsColumn && products.size() > kProductsColumn + 1) line.text += u" …"_s;
        }
        return line;
    });
    list->setRows(rows);
    addLeaveButton(1003, u"취  소"_s);
    addMainButton(1000, u"확  인"_s, [this] { confirm(); });
    list->setFocus();
}

void CPastOrdersDlg::confirm() {
    if (chosen_ < 0) {
        ui::message(u"전표를 선택하세요!"_s);
        return;
    }
    app::session().action.PastOrder = chosen_;
    close(Accepted);
}

}  // namespace sales
