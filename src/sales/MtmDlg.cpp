#include "sales/MtmDlg.h"

#include <QLabel>
#include <QTimer>

#include "app/Dialogs.h"
#include "app/KeypadRequest.h"
#include "app/Session.h"
#include "platform/Clock.h"
#include "sales/Checkout.h"
#include "sales/CustomerQuery.h"
#include "sales/Pricing.h"
#include "sales/ProductQuery.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::formatWon;
using platform::parseInteger;
using platform::parseWon;
using platform::Won;

constexpr int kCustomerName = 1059;
constexpr int kReceivable = 1088;
constexpr int kList = 1054;

constexpr std::int64_t kHighestQuantity = 999;

/// A row of the amounts: the label or its button, the selected line's value and the slip's sum.
struct AmountRow {
    int lineValue;
    int slipSum;
    Won (*of)(const LineAmounts&);
    int top;
};
constexpr int kRowHeight = 22;
constexpr int kTotalSum = 1087;
constexpr AmountRow kAmountRows[] = {
    {1082, 1077, [](const LineAmounts& a) { return a.supply; }, 163},
    {1083, 1078, [](const LineAmounts& a) { return a.vat; }, 186},
    {1084, 1079, [](const LineAmounts& a) { return a.crateDeposit; }, 208},
    {1085, 1080, [](const LineAmounts& a) { return a.bottleDeposit; }, 223},
    {1086, 1081, [](const LineAmounts& a) { return a.subtotal(); }, 240},
    {1089, kTotalSum, [](const LineAmounts& a) { return a.total(); }, 263},
};

}  // namespace

CMtmDlg::CMtmDlg() : Screen(app::dialogs::kSalesSlip) {
    addLabel(kCustomerName, {}, {4, 0, 232, 22});
    addLabel(0, u"채권잔액"_s, {4, 22, 60, 18});
    addLabel(kReceivable, {}, {66, 22, 170, 18}, ui::FontHeight::Small, Qt::AlignRight | Qt::AlignVCenter);

    list_ = addList(kList, {0, 41, 240, 106});
    const ui::ListColumn columns[] = {{u"코드"_s, 40},
                                      {u"상품명"_s, 110},
                                      {u"상자"_s, 34, Qt::AlignRight | Qt::AlignVCenter},
                                      {u"본"_s, 34, Qt::AlignRight | Qt::AlignVCenter}};
    list_->setColumns(columns);
    connect(list_, &ui::ReportList::rowClicked, this, &CMtmDlg::selectLine);
    connect(list_, &ui::ReportList::emptyPartClicked, this, [this] {
        list_->clearSelection();
        deselect();
        showAmounts();
        ui::message(u"매출상품이 선택되지 않았습니다..!"_s);
    });
    connect(list_, &ui::ReportList::rowDoubleClicked, this, [this](int row) {
        selectLine(row);
        changeQuantities();
    });

    addAmountRows();
    addButtons();
    openSlip();
    list_->setFocus();
}

void CMtmDlg::addAmountRows() {
    constexpr auto kRight = Qt::AlignRight | Qt::AlignVCenter;
    addLabel(0, u"선택상품"_s, {48, 148, 60, 14}, ui::FontHeight::Small, kRight);
    addLabel(0, u"전표합계"_s, {110, 148, 68, 14}, ui::FontHeight::Small, kRight);
    savedMark_ = addLabel(0, {}, {182, 148, 56, 14}, ui::FontHeight::Small, Qt::AlignCenter);
    addLabel(0, u"용  기"_s, {4, 208, 44, 15});
    addLabel(0, u"공  병"_s, {4, 223, 44, 15});
    for (const AmountRow& row : kAmountRows) {
        const bool isDeposit = row.of(LineAmounts{{}, {}, Won(1), Won(1)}) == Won(1);
        const int height = isDeposit ? 15 : kRowHeight;
        QLabel* lineValue =
            addLabel(row.lineValue, {}, {48, row.top, 60, height}, ui::FontHeight::Small, kRight);
        setTextColour(lineValue, QColor(0x1c, 0x5b, 0xa8));
        addLabel(row.slipSum, {}, {110, row.top, 68, height}, ui::FontHeight::Small, kRight);
    }

    const QString noGoods = u"품목이 없으면 공급가액을 수정할수 없습니다.."_s;
    const QString noGoodsToSum = u"품목이 없으면 합계금액을 수정할수 없습니다.."_s;
    const auto amountButton = [&](int controlId, const QString& caption, int top, const AmountEdit& edit) {
        ui::BitmapButton* button = addButton(controlId, caption, {2, top}, ui::bitmaps::kAmount);
        connect(button, &ui::BitmapButton::clicked, this, [this, edit] { editAmount(edit); });
    };
    amountButton(1076, u"공급가"_s, kAmountRows[0].top,
                 {u"공급가"_s, kAmountRows[0].of, withSupply, noGoods});
    // The VAT's refusal speaks of the supply amount.
    amountButton(1090, u"부가세"_s, kAmountRows[1].top, {u"부가세"_s, kAmountRows[1].of, withVat, noGoods});
    amountButton(1075, u"소계"_s, kAmountRows[4].top,
                 {u"상품소계"_s, kAmountRows[4].of, withSubtotal, noGoodsToSum});
    amountButton(1074, u"합계"_s, kAmountRows[5].top,
                 {u"상품합계"_s, kAmountRows[5].of, withTotal, noGoodsToSum});
}

void CMtmDlg::addButtons() {
    const auto button = [this](int controlId, const QString& caption, QPoint at, ui::ButtonBitmaps pictures,
                               auto action) {
        ui::BitmapButton* result = addButton(controlId, caption, at, pictures);
        connect(result, &ui::BitmapButton::clicked, this, action);
        return result;
    };
    button(1137, u"주문서 저장"_s, {182, 165}, ui::bitmaps::kSaveSlip, &CMtmDlg::save);
    button(1010, u"상품코드검색"_s, {182, 225}, ui::bitmaps::kSearchCode, &CMtmDlg::addByCode);
    button(1002, u"삭  제"_s, {62, 287}, ui::bitmaps::kDelete, &CMtmDlg::deleteSelected);
    button(1000, u"등  록"_s, {122, 287}, ui::bitmaps::kAdd, &CMtmDlg::addFromSearch);
    setDefaultButton(button(1003, u"완  료"_s, {182, 287}, ui::bitmaps::kConfirm, &CMtmDlg::finish));
    ui::BitmapButton* cancel = addButton(1001, u"취 소"_s, {2, 287}, ui::bitmaps::kCancel);
    connect(cancel, &ui::BitmapButton::clicked, this, [this] { close(Cancelled); });
    setCancelButton(cancel);
}

void CMtmDlg::openSlip() {
    app::SessionValues& session = app::session();
    const auto opened = sales::openSlip(session.UserID, session.WorkDate, session.action.JunNo);
    if (!opened) {
        QTimer::singleShot(0, this, [this] {
            ui::message(u"주문서를 열지 못했습니다..!"_s);
            close(Cancelled);
        });
    }
    const OpenedSlip slip = opened.value_or(OpenedSlip{});
    // The slip list knows the customer's name only; the slip itself knows who it is.
    if (session.action.GCode.isEmpty()) session.action.GCode = slip.GCode;
    const CustomerAccount account = customerAccount(session.action.GCode);
    session.action.CustomerKind = account.Gubun;
    receivable_ = account.CJMoney;
    sums_ = slip.sums;
    setFittedText(kCustomerName, session.action.GName, ui::FontHeight::Medium);
    setAmount(kReceivable, receivable_);
    list_->setRows(slip.lines);
    showAmounts();
}

Won CMtmDlg::total() const {
    return slipTotal(sums_, app::session().UserField3);
}

void CMtmDlg::showLines() {
    list_->setRows(workingLines());
    if (selected_) list_->selectRow(rowOf(*selected_));
}

int CMtmDlg::rowOf(const LineKey& key) const {
    for (int row = 0; row < list_->rowCount(); ++row) {
        if (list_->text(row, 0) == key.PCode && list_->text(row, 2) == key.Box &&
            list_->text(row, 3) == key.Bon)
            return row;
    }
    return -1;
}

void CMtmDlg::showAmounts() {
    for (const AmountRow& row : kAmountRows) {
        setAmount(row.lineValue, row.of(selectedAmounts_));
        setAmount(row.slipSum, row.slipSum == kTotalSum ? total() : row.of(sums_));
    }
    handOver(sums_, receivable_);
}

void CMtmDlg::markUnsaved() {
    hasUnsavedLines_ = true;
    savedMark_->clear();
    sums_ = workingSums();
}

void CMtmDlg::deselect() {
    selected_.reset();
    selectedAmounts_ = {};
}

void CMtmDlg::addFromSearch() {
    app::ActionValues& action = app::session().action;
    action.PCode.clear();
    action.SeekValue.clear();
    action.ProductChosen = 0;
    const bool byConsonant = app::session().UserField6 == u"Y";
    ui::runScreen(byConsonant ? app::dialogs::kProductBoard : app::dialogs::kProductSearch);
    if (action.ProductChosen == 1) addProduct(action.PCode);
}

void CMtmDlg::addByCode() {
    if (!app::askText(u"상품코드"_s)) return;
    const QString pcode = app::keypadRequest().KeypadValue1;
    if (!productExists(pcode)) {
        ui::message(u"입력하신 상품코드는 존재하지 않습니다..!"_s);
        return;
    }
    addProduct(pcode);
}

void CMtmDlg::addProduct(const QString& pcode) {
    if (list_->contains(0, pcode)) {
        ui::message(u"상품이 이미 등록되어있습니다..!"_s);
        return;
    }
    std::int64_t boxes = 0;
    std::int64_t bottles = 0;
    if (!askQuantities(&boxes, &bottles, {})) return;

    app::SessionValues& session = app::session();
    const ProductName product = productName(pcode).value_or(ProductName{});
    const LineAmounts amounts =
        priceLine(session.action.GCode, session.action.CustomerKind, pcode, boxes, bottles).amounts;
    SlipLine line;
    line.DDate = session.WorkDate;
    line.GCode = session.action.GCode;
    line.GName = session.action.GName;
    line.JunNo = session.action.JunNo;
    line.PCode = pcode;
    line.PName = product.Pname;
    line.JGubun = product.JGubun;
    line.Box = QString::number(boxes);
    line.Bon = QString::number(bottles);
    line.setAmounts(amounts);
    if (insertLine(line)) markUnsaved();
    showLines();
    // The list is short: the new line may stand below what it shows.
    list_->scrollTo(list_->model()->index(rowOf({line.PCode, line.Box, line.Bon}), 0));
    showAmounts();
}

bool CMtmDlg::askQuantities(std::int64_t* boxes, std::int64_t* bottles, const LineKey& start) {
    if (!app::askTwoNumbers(u"박스수량"_s, u"본  수량"_s, start.Box, start.Bon)) return false;
    *boxes = parseInteger(app::keypadRequest().KeypadValue1);
    *bottles = parseInteger(app::keypadRequest().KeypadValue2);
    const auto isTooLong = [](std::int64_t n) { return n > kHighestQuantity || n < -kHighestQuantity; };
    // A line of nothing is no line.
    if (*boxes == 0 && *bottles == 0) return false;
    if (!isTooLong(*boxes) && !isTooLong(*bottles)) return true;
    ui::message(u"박스, 본 수량을 3자리까지만 지원합니다.. ^^!"_s);
    return false;
}

void CMtmDlg::selectLine(int row) {
    selected_ = LineKey{list_->text(row, 0), list_->text(row, 2), list_->text(row, 3)};
    selectedAmounts_ = lineAmounts(*selected_).value_or(LineAmounts{});
    showAmounts();
}

void CMtmDlg::changeQuantities() {
    if (!selected_) {
        ui::message(u"상품이 선택되지 않으면 수정할수 없습니다."_s);
        return;
    }
    std::int64_t boxes = 0;
    std::int64_t bottles = 0;
    if (!askQuantities(&boxes, &bottles, *selected_)) return;
    const LineKey changed{selected_->PCode, QString::number(boxes), QString::number(bottles)};
    // Two lines of the same product and quantities could not be told apart any more.
    if (changed != *selected_ && rowOf(changed) >= 0) {
        ui::message(u"상품이 이미 등록되어있습니다..!"_s);
        return;
    }
    const app::ActionValues& action = app::session().action;
    const LineAmounts amounts =
        priceLine(action.GCode, action.CustomerKind, selected_->PCode, boxes, bottles).amounts;
    if (replaceQuantities(*selected_, boxes, bottles, amounts)) {
        selected_ = changed;
        selectedAmounts_ = amounts;
        markUnsaved();
    }
    showLines();
    showAmounts();
}

void CMtmDlg::editAmount(const AmountEdit& edit) {
    if (list_->rowCount() == 0) {
        ui::message(edit.emptyMessage);
        return;
    }
    if (!selected_) {
        ui::message(u"상품이 선택되지 않으면 수정할수 없습니다."_s);
        return;
    }
    if (!app::askNumber(edit.title, formatWon(edit.start(selectedAmounts_)))) return;
    const LineAmounts changed = edit.apply(selectedAmounts_, parseWon(app::keypadRequest().KeypadValue1));
    if (!replaceAmounts(*selected_, changed)) return;
    selectedAmounts_ = changed;
    markUnsaved();
    showAmounts();
}

void CMtmDlg::deleteSelected() {
    if (!ui::confirm(u"품목을 삭제할까요?"_s, u"품목삭제"_s)) return;
    if (!selected_) {
        ui::message(u"상품이 선택되지 않으면 삭제할수 없습니다."_s);
        return;
    }
    deleteLine(*selected_);
    markUnsaved();
    deselect();
    showLines();
    showAmounts();
}

bool CMtmDlg::save() {
    const app::SessionValues& session = app::session();
    const SaveOutcome outcome = saveSlip(session.UserID, session.WorkDate, session.action.JunNo);
    if (outcome == SaveOutcome::Empty) ui::message(u"주문서에 등록된 상품이 없습니다..!"_s);
    if (outcome == SaveOutcome::Failed) return false;
    hasUnsavedLines_ = false;
    savedMark_->setText(outcome == SaveOutcome::Saved ? u"저장됨"_s : QString());
    return true;
}

void CMtmDlg::finish() {
    app::SessionValues& session = app::session();
    if (isWorkingSlipEmpty()) {
        ui::message(u"매출상품이 선택되지 않았습니다..!"_s);
        return;
    }
    // What is paid and printed is the saved slip, so what is on screen is saved on the way there.
    if (hasUnsavedLines_ && !save()) {
        ui::message(u"주문서를 저장하지 못했습니다..!"_s);
        return;
    }

    int next = app::dialogs::kCollectionEntry;
    if (session.UserField4 == u"N") next = app::dialogs::kContainerDeposit;
    if (session.UserField4 == u"Y" || session.UserField4 == u"Z") next = app::dialogs::kContainerSlip;
    ui::runScreen(next);
    if (session.SlipDone == 1) {
        close(Accepted);
        return;
    }
    // The collection may have moved it.
    receivable_ = customerAccount(session.action.GCode).CJMoney;
    setAmount(kReceivable, receivable_);
    showAmounts();
}

}  // namespace sales
