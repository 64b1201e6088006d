#include "sales/screens/PastOrdersDlg.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "books/SaleAmounts.h"
#include "sales/Checkout.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kList = 1054;
constexpr int kRowHeight = 36;

QString productsOf(const PastSlip& slip) {
    const QString first = slip.products.first().PName;
    return slip.products.size() > 1 ? u"%1 외 %2"_s.arg(first).arg(slip.products.size() - 1) : first;
}

QString weekday(const PastSlip& slip) {
    constexpr QStringView kDays = u"월화수목금토일";
    const int day = QDate::fromString(slip.DDate, Qt::ISODate).dayOfWeek();
    return day > 0 ? u"%1요일"_s.arg(kDays[day - 1]) : QString();
}

QString amountOf(const PastSlip& slip) {
    Quantities all;
    for (const Purchase& purchase : slip.products) all = all + purchase.quantities;
    return quantityText(all);
}

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
        {{u"날짜"_s, 70}, {u"합계"_s, 78, ui::kRight}, {u"품목"_s, 86}}, [this](int row) { chosen_ = row; },
        [this] { confirm(); });
    platform::Rows rows{.columns = 3, .cells = {}};
    for (const PastSlip& slip : history_.slips().mid(0, PurchaseHistory::kOffered)) {
        const SlipSums paid = slipSums(slip.sums, books::vatMode(slip.UserID));
        rows.cells << slip.DDate << platform::groupThousands(paid.total()) << productsOf(slip);
    }
    list->setCellDetails(kRowHeight, [this](const platform::Rows&, int row, int column) {
        const PastSlip& slip = history_.slips()[row];
        return ui::CellDetail{column == 0 ? weekday(slip) : column == 1 ? amountOf(slip) : QString()};
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
