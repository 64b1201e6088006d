#include "container/screens/ContainerSlipDlg.h"

#include <QLabel>
#include <algorithm>

#include "app/Dialogs.h"
#include "app/KeypadRequest.h"
#include "app/Session.h"
#include "books/ContainerBalance.h"
#include "books/Product.h"
#include "container/ContainerProduct.h"
#include "container/WorkingContainers.h"
#include "ui/AmountTable.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"

namespace container {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

enum Control { kBalance = 1099, kTotalSum = 1081, kTotalOfLine = 1086 };

/// A row of the amounts: its button and caption, the slip's sum, the selected line's value.
struct AmountRow {
    int button;
    QStringView caption;
    int slipSum;
    int lineValue;
    Won ContainerAmounts::*amount;
};
constexpr AmountRow kAmountRows[] = {
    {1092, u"용  기", 1077, 1082, &ContainerAmounts::crates},
    {1093, u"공  병", 1078, 1083, &ContainerAmounts::bottles},
    {1096, u"용수수", 1079, 1084, &ContainerAmounts::crateFee},
    {1076, u"공수수", 1080, 1085, &ContainerAmounts::bottleFee},
};

}  // namespace

CContainerSlipDlg::CContainerSlipDlg()
    : ContainerEntry(app::dialogs::kContainerSlip),
      history_(app::session().action.GCode, app::session().WorkDate, app::session().action.JunNo,
               app::session().UserID) {
    list_ = addList(
        1054, {0, 41, 240, 97}, u"용공회수 상품"_s,
        {{u"코드"_s, 38},
         {u"상품명"_s, 104},
         {u"공상"_s, 30, ui::kRight},
         {u"입상"_s, 30, ui::kRight},
         {u"공병"_s, 30, ui::kRight}},
        [this](int row) {
            selected_ = keyAt(lines_, row);
            showAmounts();
        },
        [this] { changeCounts(); });
    list_->setEmptyText(u"돌려받은 것이 없으면 [완료],\n있으면 [등록]을 누르세요."_s);
    connect(list_, &ui::ReportList::emptyPartClicked, this, [this] {
        list_->clearSelection();
        selected_.reset();
        showAmounts();
        ui::message(u"매출상품이 선택되지 않았습니다..!"_s);
    });
    addAmountRows();
    addLabel(kBalance, {}, {4, 270, 232, 15});
    addButtons();
    showLines();
    list_->setFocus();
}

void CContainerSlipDlg::addAmountRows() {
    const ui::AmountTable table{.left = ui::kGridLeft,
                                .captionWidth = 43,
                                .rowHeight = 24,
                                .columns = {{47, 63, u"선택상품"_s, true}, {114, 66, u"전표합계"_s}}};
    addAmountTitles(table, 138, 15);
    int top = 153;
    for (const AmountRow& row : kAmountRows) {
        const QString caption = row.caption.toString();
        addAmountRow(table, {caption, top, {row.lineValue, row.slipSum}, row.button, [this, caption, &row] {
                                 editAmount(caption, row.amount);
                             }});
        top += 25;
    }
    addAmountRow(table, {.caption = u"합  계"_s,
                         .top = top,
                         .values = {kTotalOfLine, kTotalSum},
                         .height = 16,
                         .name = u"합계"_s});
}

void CContainerSlipDlg::addButtons() {
    addButton(1010, u"용공코드검색"_s, {182, 153}, ui::bitmaps::kSearchCode,
              [this] { addFromSearch(false); });
    addButton(1091, u"용공잔액"_s, {182, 213}, ui::bitmaps::kSearch,
              [] { ui::runScreen(app::dialogs::kContainerBalance); });
    addLeaveButton(1001, u"취 소"_s, [this] { leave(); });
    addBottomButton(1002, u"삭  제"_s, 1, ui::bitmaps::kDelete, [this] { deleteSelected(); });
    addBottomButton(1000, u"등  록"_s, 2, ui::bitmaps::kAdd,
                    [this] { addFromSearch(app::session().UserField6 == u"Y"); });
    addMainButton(1003, u"완  료"_s, [this] { finish(); });
}

void CContainerSlipDlg::showLines() {
    lines_ = workingLines();
    list_->setRows(lines_);
    // The list is short: the line may stand below what it shows.
    if (selected_)
        list_->showChosen(lines_.find([this](int row) { return keyAt(lines_, row) == *selected_; }));
    showAmounts();
}

void CContainerSlipDlg::showAmounts() {
    const ContainerAmounts sums = workingSums();
    const ContainerAmounts line =
        selected_ ? lineAmounts(*selected_).value_or(ContainerAmounts{}) : ContainerAmounts{};
    for (const AmountRow& row : kAmountRows) {
        setAmount(row.slipSum, sums.*row.amount);
        setAmount(row.lineValue, line.*row.amount);
    }
    setAmount(kTotalSum, sums.recovery());
    setAmount(kTotalOfLine, line.recovery());
    showBalance();
}

void CContainerSlipDlg::showBalance() {
    QString text;
    if (selected_) {
        const QList<books::ContainerBalance> balances = history_.with(workingReturns());
        const auto found = std::find_if(
            balances.begin(), balances.end(),
            [this](const books::ContainerBalance& balance) { return balance.PCode == selected_->PCode; });
        const books::ContainerBalance balance = found != balances.end() ? *found : books::ContainerBalance{};
        const auto shown = [](const books::Containers& held) {
            return u"%1/%2"_s.arg(held.crates).arg(held.bottles);
        };
        text = u"전 %1 출고 %2 회수 %3 잔 %4"_s.arg(shown(balance.before), shown(balance.delivered),
                                                    shown(balance.returned), shown(balance.after()));
    }
    setFittedText(kBalance, text, ui::FontHeight::Small);
}

void CContainerSlipDlg::addFromSearch(bool byConsonant) {
    app::ActionValues& action = app::session().action;
    action.SelectedContainerPCode.clear();
    action.ContainerSearchKey.clear();
    action.ContainerSearchResult = 0;
    action.SeeksContainer = byConsonant;
    ui::runScreen(byConsonant ? app::dialogs::kProductBoard : app::dialogs::kContainerSearch);
    action.SeeksContainer = false;
    if (action.ContainerSearchResult == 1) addProduct(action.SelectedContainerPCode);
}

void CContainerSlipDlg::addProduct(const QString& pCode) {
    if (!books::productExists(pCode)) {
        ui::message(u"품목코드에서 해당품목이 없습니다..!"_s);
        return;
    }
    if (lines_.find([&](int row) { return lines_.at(row, 0) == pCode; }) >= 0) {
        ui::message(u"상품이 이미 등록되어있습니다..!"_s);
        return;
    }
    const auto counts = askCounts(pCode, {});
    if (!counts) return;
    if (counts->isZero()) {
        ui::message(u"회수수량이 없으면 등록되지 않습니다..!"_s);
        return;
    }
    if (addLine(pCode, *counts)) selected_ = keyOf(pCode, *counts);
    showLines();
}

void CContainerSlipDlg::changeCounts() {
    const auto counts = askCounts(selected_->PCode, selected_->counts());
    if (!counts) return;
    if (counts->isZero()) {
        ui::message(u"회수수량이 없으면 등록되지 않습니다..!"_s);
        return;
    }
    if (recount(*selected_, *counts)) selected_ = keyOf(selected_->PCode, *counts);
    showLines();
}

void CContainerSlipDlg::editAmount(const QString& title, Won ContainerAmounts::*amount) {
    if (lines_.isEmpty()) {
        ui::message(u"품목이 없으면 합계금액을 수정할수 없습니다.."_s);
        return;
    }
    if (!selected_) {
        ui::message(u"상품이 선택되지 않으면 수정할수 없습니다."_s);
        return;
    }
    const ContainerAmounts line = lineAmounts(*selected_).value_or(ContainerAmounts{});
    if (!app::askNumber(title, platform::formatWon(line.*amount))) return;
    const Won keyed = platform::parseWon(app::keypadRequest().KeypadValue1);
    // Taken back for less than nothing, empties raise the customer's debt.
    if (keyed < Won() && !ui::confirm(u"금액이 0보다 작습니다. 그대로 등록할까요?"_s, title)) return;
    replaceAmount(*selected_, amount, keyed);
    showAmounts();
}

void CContainerSlipDlg::deleteSelected() {
    if (!selected_) {
        ui::message(u"상품이 선택되지 않으면 삭제할수 없습니다."_s);
        return;
    }
    if (!ui::confirm(u"품목을 삭제할까요?"_s, u"품목삭제"_s)) return;
    deleteLine(*selected_);
    selected_.reset();
    showLines();
}

}  // namespace container
