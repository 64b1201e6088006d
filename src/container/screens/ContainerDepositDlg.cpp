#include "container/screens/ContainerDepositDlg.h"

#include <QLabel>

#include "app/Dialogs.h"
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

constexpr int kProduct = 1060;

/// A row of the amounts: the chosen line's value and the sum of all lines.
struct AmountRow {
    QStringView caption;
    int lineValue;
    int sum;
    Won (*of)(const DepositLine&);
};
constexpr int kRecoverySum = 1080;
constexpr AmountRow kAmountRows[] = {
    {u"용기보증", 1082, 1077, [](const DepositLine& line) { return line.crateDeposit; }},
    {u"공병보증", 1083, 1078, [](const DepositLine& line) { return line.bottleDeposit; }},
    {u"보증합계", 1084, 1079, [](const DepositLine& line) { return line.deposit(); }},
    {u"회수금액", 1085, kRecoverySum, [](const DepositLine& line) { return line.recovery; }},
};

QString countsOf(const DepositLine& line) {
    if (!line.returned) return {};
    return u"%1/%2/%3"_s.arg(line.returned->FBox, line.returned->NBox, line.returned->Bon);
}

}  // namespace

CContainerDepositDlg::CContainerDepositDlg() : ContainerEntry(app::dialogs::kContainerDeposit) {
    // What is taken back stands as empty crates, filled crates and bottles.
    list_ = addList(
        1054, {0, 41, 240, 130}, u"용공 보증금 상품"_s,
        {{u"상품명"_s, 78},
         {u"상자"_s, 30, ui::kRight},
         {u"본"_s, 30, ui::kRight},
         {u"공상/입상/병"_s, 86, ui::kRight}},
        [this](int) { showAmounts(); }, [this] { takeBack(); });
    addAmountRows();
    addBottomButton(1091, u"용공잔액"_s, 1, ui::bitmaps::kSearch,
                    [] { ui::runScreen(app::dialogs::kContainerBalance); });
    addLeaveButton(1001, u"취  소"_s, [this] { leave(); });
    addBottomButton(1000, u"회  수"_s, 2, ui::bitmaps::kAdd, [this] { takeBack(); });
    addMainButton(1003, u"완  료"_s, [this] { finish(); });
    showLines(-1);
    list_->setFocus();
}

void CContainerDepositDlg::addAmountRows() {
    constexpr int kRowHeight = 18;
    addLabel(kProduct, {}, {4, 172, 232, kRowHeight});
    const ui::AmountTable table{.left = ui::kGridLeft,
                                .captionWidth = 68,
                                .rowHeight = kRowHeight,
                                .columns = {{74, 76, u"선택상품"_s, true}, {156, 80, u"전표합계"_s}}};
    int top = 190;
    addAmountTitles(table, top, kRowHeight);
    for (const AmountRow& row : kAmountRows)
        addAmountRow(table, {row.caption.toString(), top += kRowHeight, {row.lineValue, row.sum}});
}

void CContainerDepositDlg::takeBack() {
    const int row = list_->selectedRow();
    if (row < 0) {
        ui::message(u"상품이 선택되지 않으면 회수할수 없습니다."_s);
        return;
    }
    const DepositLine line = lines_[row];
    if (!line.returned && !isContainer(line.PCode)) {
        ui::message(u"용공 품목이 아니면 회수할수 없습니다..!"_s);
        return;
    }
    const auto counts = askCounts(line.returned ? line.returned->counts() : ContainerCounts{});
    if (!counts) return;
    if (line.returned) {
        // Keyed down to nothing, the line goes.
        counts->isZero() ? deleteLine(*line.returned) : void(recount(*line.returned, *counts));
    } else if (counts->isZero()) {
        ui::message(u"회수수량이 없으면 등록되지 않습니다..!"_s);
    } else {
        addLine(line.PCode, *counts);
    }
    showLines(row);
}

void CContainerDepositDlg::showLines(int row) {
    lines_ = depositLines();
    platform::Rows rows{.columns = 4, .cells = {}};
    for (const DepositLine& line : lines_) rows.cells << line.PName << line.Box << line.Bon << countsOf(line);
    list_->setRows(rows);
    // A product that was only taken back goes with its counts.
    if (row >= 0) list_->showChosen(row);
    showAmounts();
}

void CContainerDepositDlg::showAmounts() {
    const int row = list_->selectedRow();
    const DepositLine chosen = row < 0 ? DepositLine{} : lines_[row];
    for (const AmountRow& amount : kAmountRows) {
        Won sum;
        for (const DepositLine& line : lines_) sum += amount.of(line);
        // A product sold in two lines is taken back once.
        if (amount.sum == kRecoverySum) sum = workingSums().recovery();
        setAmount(amount.lineValue, amount.of(chosen));
        setAmount(amount.sum, sum);
    }
    // In the list long names and large counts are cut short.
    QString product = chosen.PName;
    if (chosen.returned) {
        product += u"  공상 %1 입상 %2 병 %3"_s.arg(chosen.returned->FBox, chosen.returned->NBox,
                                                    chosen.returned->Bon);
    }
    setFittedText(kProduct, product, ui::FontHeight::Small);
}

}  // namespace container
