#include "sales/screens/MtmDlg.h"

#include <QLabel>
#include <QTimer>
#include <utility>

#include "app/Dialogs.h"
#include "app/KeypadRequest.h"
#include "app/Session.h"
#include "app/UnsavedWork.h"
#include "books/Customer.h"
#include "books/Receivable.h"
#include "platform/Clock.h"
#include "sales/Checkout.h"
#include "sales/PriceOrigin.h"
#include "sales/Pricing.h"
#include "sales/ProductQuery.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"
#include "sales/screens/HandOver.h"
#include "ui/AmountTable.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;
using platform::formatWon;
using platform::parseInteger;
using platform::parseWon;
using platform::Won;

/// One of the slip's amounts: the selected line's value and the slip's sum, and for an amount that can be
/// keyed its button and how.
struct SlipAmount {
    QStringView caption;
    int top;
    int lineValue;
    int slipSum;
    Won (*of)(const LineAmounts&);
    int button = 0;
    QStringView title{};                               ///< The keypad's.
    LineAmounts (*apply)(LineAmounts, Won) = nullptr;  ///< What the line becomes.
    QStringView emptyMessage{};                        ///< The refusal on a slip without lines.
};

namespace {

constexpr int kCustomerName = 1059;
constexpr int kReceivable = 1088;

constexpr std::int64_t kHighestQuantity = 999;

constexpr QStringView kUnknownProduct = u"입력하신 상품코드는 존재하지 않습니다..!";
constexpr QStringView kNoGoods = u"품목이 없으면 공급가액을 수정할수 없습니다..";
constexpr QStringView kNoGoodsToSum = u"품목이 없으면 합계금액을 수정할수 없습니다..";
constexpr SlipAmount kAmounts[] = {
    {u"공급가", 160, 1082, 1077, [](const LineAmounts& a) { return a.supply; }, 1076, u"공급가", withSupply,
     kNoGoods},
    // The VAT's refusal speaks of the supply amount.
    {u"부가세", 184, 1083, 1078, [](const LineAmounts& a) { return a.vat; }, 1090, u"부가세", withVat,
     kNoGoods},
    {u"용  기", 208, 1084, 1079, [](const LineAmounts& a) { return a.crateDeposit; }},
    {u"공  병", 222, 1085, 1080, [](const LineAmounts& a) { return a.bottleDeposit; }},
    {u"소계", 236, 1086, 1081, [](const LineAmounts& a) { return a.subtotal(); }, 1075, u"상품소계",
     withSubtotal, kNoGoodsToSum},
    {u"합계", 260, 1089, 1087, [](const LineAmounts& a) { return a.total(); }, 1074, u"상품합계", withTotal,
     kNoGoodsToSum},
};

}  // namespace

CMtmDlg::CMtmDlg() : Screen(app::dialogs::kSalesSlip) {
    addLabel(kCustomerName, {}, {4, 0, 232, 22});
    addLabel(0, u"채권잔액"_s, {4, 22, 60, 18});
    addAmount(kReceivable, u"채권잔액"_s, {66, 22, 170, 18});

    list_ = addList(
        1054, {0, 41, 240, 103}, u"주문서 상품"_s,
        {{u"코드"_s, 40}, {u"상품명"_s, 110}, {u"상자"_s, 34, ui::kRight}, {u"본"_s, 34, ui::kRight}},
        [this](int row) { selectLine(row); }, [this] { changeQuantities(); });
    connect(list_, &ui::ReportList::emptyPartClicked, this, [this] {
        list_->clearSelection();
        deselect();
        showAmounts();
        ui::message(u"매출상품이 선택되지 않았습니다..!"_s);
    });

    addAmountRows();
    addButtons();
    openSlip();
    list_->setFocus();
}

void CMtmDlg::addAmountRows() {
    const ui::AmountTable table{
        .left = ui::kGridLeft,
        .captionWidth = 43,
        .rowHeight = 24,
        .columns = {{47, 63, u"선택상품"_s, true, [this] { explainPrice(); }}, {114, 66, u"전표합계"_s}}};
    addAmountTitles(table, 144, 15);
    savedMark_ = addLabel(0, {}, {182, 144, 56, 15}, ui::FontHeight::Small, Qt::AlignCenter);
    for (const SlipAmount& amount : kAmounts) {
        const bool isKeyed = amount.apply != nullptr;
        addAmountRow(table, {.caption = amount.caption.toString(),
                             .top = amount.top,
                             .values = {amount.lineValue, amount.slipSum},
                             .button = amount.button,
                             .pressed = [this, &amount] { editAmount(amount); },
                             .height = isKeyed ? 0 : 14,
                             .name = amount.caption.toString().remove(u' ')});
        // All of them tell the same, so Tab stops at one.
        if (&amount != std::begin(kAmounts)) control(amount.lineValue)->setFocusPolicy(Qt::NoFocus);
    }
}

void CMtmDlg::addButtons() {
    addButton(1137, u"주문서 저장"_s, {182, 162}, ui::bitmaps::kSaveSlip, [this] { save(); });
    addButton(1010, u"상품코드검색"_s, {182, 222}, ui::bitmaps::kSearchCode, [this] { addByCode(); });
    addBottomButton(1002, u"삭  제"_s, 1, ui::bitmaps::kDelete, [this] { deleteSelected(); });
    addBottomButton(1000, u"등  록"_s, 2, ui::bitmaps::kAdd, [this] { addFromSearch(); });
    addMainButton(1003, u"완  료"_s, [this] { finish(); });
    addLeaveButton(1001, u"취 소"_s, [this] {
        if (app::mayLeave(books::Working::Sale)) close(Cancelled);
    });
}

bool CMtmDlg::isNumberTaken() const {
    const app::SessionValues& session = app::session();
    // A slip from the list brings no customer along: it is who its lines say.
    return !session.action.GCode.isEmpty() &&
           isOtherCustomers(session.UserID, session.WorkDate, session.action.JunNo, session.action.GCode);
}

void CMtmDlg::openSlip() {
    app::SessionValues& session = app::session();
    if (isNumberTaken()) {
        QTimer::singleShot(0, this, [this] {
            tellNumberTaken();
            close(Cancelled);
        });
        return;
    }
    hasUnsavedLines_ = std::exchange(session.action.IsResumed, false);
    const auto opened = hasUnsavedLines_
                            ? resumeSlip()
                            : sales::openSlip(session.UserID, session.WorkDate, session.action.JunNo);
    if (!opened) {
        QTimer::singleShot(0, this, [this] {
            ui::message(u"주문서를 열지 못했습니다..!"_s);
            close(Cancelled);
        });
    }
    const OpenedSlip slip = opened.value_or(OpenedSlip{});
    // The slip list knows the customer's name only; the slip itself knows who it is.
    if (session.action.GCode.isEmpty()) session.action.GCode = slip.GCode;
    const auto customer = books::slipCustomer(session.action.GCode).value_or(books::Customer());
    session.action.CustomerKind = customer.Gubun;
    receivable_ = customer.receivable();
    sums_ = slip.sums;
    setFittedText(kCustomerName, session.action.GName, ui::FontHeight::Medium);
    setAmount(kReceivable, receivable_);
    lines_ = slip.lines;
    list_->setRows(lines_);
    showAmounts();
}

void CMtmDlg::showLines() {
    lines_ = workingLines();
    list_->setRows(lines_);
    if (selected_) list_->selectRow(rowOf(*selected_));
}

int CMtmDlg::rowOf(const LineKey& key) const {
    return lines_.find([&](int row) { return keyAt(lines_, row) == key; });
}

void CMtmDlg::showAmounts() {
    const SlipSums sums = slipSums(sums_, app::session().UserField3);
    for (const SlipAmount& amount : kAmounts) {
        setAmount(amount.lineValue, amount.of(selectedAmounts_));
        setAmount(amount.slipSum, amount.of(sums));
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
        ui::message(kUnknownProduct.toString());
        return;
    }
    addProduct(pcode);
}

void CMtmDlg::addProduct(const QString& pcode) {
    if (lines_.find([&](int row) { return lines_.at(row, 0) == pcode; }) >= 0) {
        ui::message(u"상품이 이미 등록되어있습니다..!"_s);
        return;
    }
    // A frequent product may have left the price list since.
    const std::optional<ProductName> product = productName(pcode);
    if (!product) {
        ui::message(kUnknownProduct.toString());
        return;
    }
    std::int64_t boxes = 0;
    std::int64_t bottles = 0;
    if (!askQuantities(&boxes, &bottles, {})) return;

    app::SessionValues& session = app::session();
    const LineAmounts amounts =
        priceLine(session.action.GCode, session.action.CustomerKind, pcode, boxes, bottles).amounts;
    SlipLine line;
    line.DDate = session.WorkDate;
    line.GCode = session.action.GCode;
    line.GName = session.action.GName;
    line.JunNo = session.action.JunNo;
    line.PCode = pcode;
    line.PName = product->Pname;
    line.JGubun = product->JGubun;
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
    if (*boxes == 0 && *bottles == 0) {
        ui::message(u"박스, 본 수량이 없으면 등록되지 않습니다..!"_s);
        return false;
    }
    if (!isTooLong(*boxes) && !isTooLong(*bottles)) return true;
    ui::message(u"박스, 본 수량을 3자리까지만 지원합니다.. ^^!"_s);
    return false;
}

bool CMtmDlg::isChosenTwice() {
    if (linesOf(*selected_) < 2) return false;
    ui::message(u"같은 상품, 같은 수량의 줄이 여러개라 수정할수 없습니다..! 삭제후 다시 등록하세요!!"_s);
    showLines();
    showAmounts();
    return true;
}

void CMtmDlg::selectLine(int row) {
    selected_ = keyAt(lines_, row);
    selectedAmounts_ = lineAmounts(*selected_).value_or(LineAmounts{});
    showAmounts();
}

void CMtmDlg::changeQuantities() {
    if (!selected_) {
        ui::message(u"상품이 선택되지 않으면 수정할수 없습니다."_s);
        return;
    }
    if (isChosenTwice()) return;
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
    const PricedLine priced = priceLine(action.GCode, action.CustomerKind, selected_->PCode, boxes, bottles);
    // Without a contract a product that has left the price list would become one for nothing.
    if (priced.source != PriceSource::Contract && !productExists(selected_->PCode)) {
        ui::message(kUnknownProduct.toString());
        return;
    }
    if (replaceQuantities(*selected_, boxes, bottles, priced.amounts)) {
        selected_ = changed;
        selectedAmounts_ = priced.amounts;
        markUnsaved();
    }
    showLines();
    showAmounts();
}

void CMtmDlg::editAmount(const SlipAmount& amount) {
    if (lines_.isEmpty()) {
        ui::message(amount.emptyMessage.toString());
        return;
    }
    if (!selected_) {
        ui::message(u"상품이 선택되지 않으면 수정할수 없습니다."_s);
        return;
    }
    if (isChosenTwice()) return;
    if (!app::askNumber(amount.title.toString(), formatWon(amount.of(selectedAmounts_)))) return;
    const LineAmounts changed = amount.apply(selectedAmounts_, parseWon(app::keypadRequest().KeypadValue1));
    if (!replaceAmounts(*selected_, changed)) return;
    selectedAmounts_ = changed;
    markUnsaved();
    showAmounts();
}

void CMtmDlg::explainPrice() {
    if (!selected_) {
        ui::message(u"매출상품이 선택되지 않았습니다..!"_s);
        return;
    }
    const app::ActionValues& action = app::session().action;
    const std::int64_t boxes = parseInteger(selected_->Box);
    const std::int64_t bottles = parseInteger(selected_->Bon);
    const PricedLine line = priceLine(action.GCode, action.CustomerKind, selected_->PCode, boxes, bottles);
    QString text = priceOrigin(line, boxes, bottles);
    if (line.amounts != selectedAmounts_) text += u"\n전표의 금액은 수정된 금액입니다."_s;
    ui::message(text);
}

void CMtmDlg::deleteSelected() {
    if (!ui::confirm(u"품목을 삭제할까요?"_s, u"품목삭제"_s)) return;
    if (!selected_) {
        ui::message(u"상품이 선택되지 않으면 삭제할수 없습니다."_s);
        return;
    }
    const int lines = linesOf(*selected_);
    deleteLine(*selected_);
    markUnsaved();
    deselect();
    showLines();
    showAmounts();
    if (lines > 1) ui::message(u"같은 상품, 같은 수량의 줄 %1개를 모두 삭제하였습니다..!"_s.arg(lines));
}

void CMtmDlg::tellNumberTaken() const {
    ui::message(
        u"전표번호 %1에는 다른 거래처의 전표가 있어 주문서를 쓸수 없습니다..! 사무실에 연락하세요!!"_s.arg(
            app::session().action.JunNo));
}

void CMtmDlg::tellMoved(Won moved) {
    if (moved.isZero()) return;
    receivable_ = books::receivable(app::session().action.GCode);
    setAmount(kReceivable, receivable_);
    const bool isMore = moved > Won();
    ui::message(u"입금전표가 이미 있어 미결제액을 ['%1'원] %2..! 결제금액을 다시 확인하세요..!!"_s.arg(
        platform::groupThousands(isMore ? moved : -moved), isMore ? u"늘렸습니다"_s : u"줄였습니다"_s));
}

bool CMtmDlg::save() {
    const app::SessionValues& session = app::session();
    Won moved;
    const SaveOutcome outcome = saveSlip(session.UserID, session.WorkDate, session.action.JunNo, &moved);
    if (outcome == SaveOutcome::Empty) ui::message(u"주문서에 등록된 상품이 없습니다..!"_s);
    if (outcome == SaveOutcome::Taken) {
        tellNumberTaken();
        return false;
    }
    // No word about one that failed: the log has it, and "저장됨" does not show.
    if (outcome == SaveOutcome::Failed) return false;
    hasUnsavedLines_ = false;
    savedMark_->setText(outcome == SaveOutcome::Saved ? u"저장됨"_s : QString());
    tellMoved(moved);
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
    receivable_ = books::slipCustomer(session.action.GCode).value_or(books::Customer()).receivable();
    setAmount(kReceivable, receivable_);
    showAmounts();
}

}  // namespace sales
