#include "container/screens/ContainerBalanceDlg.h"

#include <QLabel>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "container/WorkingContainers.h"
#include "ui/AmountTable.h"
#include "ui/ReportList.h"
#include "ui/WaitCursor.h"

namespace container {
namespace {

using namespace Qt::Literals::StringLiterals;
using books::ContainerBalance;

constexpr int kProductName = 1060;
constexpr int kRowHeight = 18;

/// A row of the product's figures: its label, and its crates and bottles.
struct FigureRow {
    QStringView caption;
    int crates;
    int bottles;
    books::Containers (*of)(const ContainerBalance&);
};
constexpr FigureRow kFigureRows[] = {
    {u"방문전", 1077, 1082, [](const ContainerBalance& balance) { return balance.before; }},
    {u"금일출고", 1078, 1083, [](const ContainerBalance& balance) { return balance.delivered; }},
    {u"회  수", 1079, 1084, [](const ContainerBalance& balance) { return balance.returned; }},
    {u"잔  액", 1080, 1085, [](const ContainerBalance& balance) { return balance.after(); }},
    {u"미배송주문", 1081, 1086, [](const ContainerBalance& balance) { return balance.ordered; }},
};

}  // namespace

CContainerBalanceDlg::CContainerBalanceDlg() : Screen(app::dialogs::kContainerBalance) {
    const ui::WaitCursor wait;
    addLabel(1059, {}, {4, 0, 232, 24});
    setFittedText(1059, u"용공잔액  "_s + app::session().action.GName, ui::FontHeight::Medium);
    ui::ReportList* list =
        addList(1054, {0, 25, 240, 128}, u"용공잔액 상품"_s,
                {{u"상품명"_s, 116}, {u"상자"_s, 50, ui::kRight}, {u"공병"_s, 58, ui::kRight}},
                [this](int row) { showProduct(row); });

    addLabel(kProductName, {}, {4, 154, 232, 18});
    const ui::AmountTable table{.left = ui::kGridLeft,
                                .captionWidth = 76,
                                .rowHeight = kRowHeight,
                                .columns = {{84, 70, u"상자"_s}, {160, 74, u"공병"_s}}};
    int top = 172;
    addAmountTitles(table, top, kRowHeight);
    for (const FigureRow& row : kFigureRows)
        addAmountRow(table, {row.caption.toString(), top += kRowHeight, {row.crates, row.bottles}});
    setCancelButton(addMainButton(1000, u"확  인"_s, [this] { close(Accepted); }));

    balances_ = workingBalances(app::session().action.GCode, app::session().WorkDate,
                                app::session().action.JunNo, app::session().UserID);
    platform::Rows rows{.columns = 3, .cells = {}};
    for (const ContainerBalance& balance : balances_) {
        const books::Containers after = balance.after();
        rows.cells << balance.PName << QString::number(after.crates) << QString::number(after.bottles);
    }
    list->setRows(rows);
    list->setFocus();
    if (balances_.isEmpty()) {
        setText(kProductName, u"용공 거래가 없습니다."_s);
    } else {
        list->selectRow(0);
        showProduct(0);
    }
}

void CContainerBalanceDlg::showProduct(int row) {
    const ContainerBalance& balance = balances_[row];
    setFittedText(kProductName, balance.PCode + u" "_s + balance.PName, ui::FontHeight::Small);
    for (const FigureRow& figure : kFigureRows) {
        const books::Containers held = figure.of(balance);
        setFittedText(figure.crates, QString::number(held.crates), ui::FontHeight::Small);
        setFittedText(figure.bottles, QString::number(held.bottles), ui::FontHeight::Small);
    }
}

}  // namespace container
