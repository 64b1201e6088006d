#include "sales/screens/MtmDlg.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QTimer>
#include <utility>

#include "app/Dialogs.h"
#include "app/KeypadRequest.h"
#include "app/Session.h"
#include "app/UnsavedWork.h"
#include "books/Customer.h"
#include "books/Product.h"
#include "books/Receivable.h"
#include "platform/Clock.h"
#include "sales/Checkout.h"
#include "sales/PastOrder.h"
#include "sales/PriceOrigin.h"
#include "sales/Pricing.h"
#include "sales/ProductQuery.h"
#include "sales/SlipStore.h"
#include "sales/screens/HandOver.h"
#include "sales/screens/PastOrderChoice.h"
#include "sales/screens/QuantityStepper.h"
#include "sales/screens/SlipAmounts.h"
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

namespace {

constexpr int kCustomerName = 1059;
constexpr int kReceivable = 1088;
// Our own controls.
constexpr int kCount = 1311;
constexpr int kSearchOn = 1313;

constexpr int kNameColumn = 1;
constexpr int kBoxColumn = 2;

Quantities quantitiesOf(const LineKey& key) {
    return {parseInteger(key.Box), parseInteger(key.Bon)};
}

constexpr QStringView kUnknownProduct = u"입력하신 상품코드는 존재하지 않습니다..!";

}  // namespace

CMtmDlg::CMtmDlg() : Screen(app::dialogs::kSalesSlip) {
    addLabel(kCustomerName, {}, {4, 0, 232, 22});
    addLabel(kCount, {}, {4, 22, 116, 18});
    addLabel(0, u"채권잔액"_s, {122, 22, 54, 18});
    addAmount(kReceivable, u"채권잔액"_s, {178, 22, 60, 18});
    addLines();
    addAmountRows();
    addButtons();
    app::session().action.Search = {};
    openSlip();
    list_->setFocus();
    sinceOpened_.start();
}

void CMtmDlg::addLines() {
    constexpr int kRowHeight = 29;
    constexpr int kTitleHeight = 18;
    list_ = addList(
        1054, {0, 40, 240, 107}, u"주문서 상품"_s,
        {{u"코드"_s, 40}, {u"상품명"_s, 110}, {u"상자"_s, 34, ui::kRight}, {u"본"_s, 34, ui::kRight}},
        [this](int row) { selectLine(row); }, [this] { changeQuantities(); });
    // More of the lines shows below lower titles.
    list_->horizontalHeader()->setFixedHeight(kTitleHeight);
    list_->setCellDetails(kRowHeight, [this](const platform::Rows& rows, int row, int column) {
        ui::CellDetail line;
        if (column != kNameColumn) return line;
        const LineKey key = keyAt(rows, row);
        const LineDetail detail = details_.value({key.PCode, key.Box, key.Bon});
        line.text =
            (detail.isFree ? u"※ "_s : detail.Size + u' ') + platform::groupThousands(detail.total) + u"원"_s;
        line.isMarked = detail.isFree;
        return line;
    });
    connect(list_, &ui::ReportList::emptyPartClicked, this, [this] {
        list_->clearSelection();
        deselect();
        showAmounts();
        ui::message(u"매출상품이 선택되지 않았습니다..!"_s);
    });
    connect(list_, &ui::ReportList::cellTapped, this, [this](int row, int column) {
        if (column >= kBoxColumn) stepper_->showAt(row, column);
    });
}

void CMtmDlg::addAmountRows() {
    const ui::AmountTable table{.left = ui::kGridLeft,
                                .captionWidth = 43,
                                .rowHeight = 24,
                                .columns = {{47, 63, u"선택상품"_s, true, [this] { explainPrice(); }},
                                            {114, 66, u"전표합계"_s, false, [this] {
                                                 ui::message(totalOrigin(sums_, app::session().UserField3));
                                             }}}};
    addAmountTitles(table, 147, 15);
    savedMark_ = addLabel(0, {}, {2, 147, 45, 15}, ui::FontHeight::Small, Qt::AlignCenter);
    for (const SlipAmount& amount : slipAmounts()) {
        const bool isKeyed = amount.apply != nullptr;
        addAmountRow(table, {.caption = amount.caption.toString(),
                             .top = amount.top,
                             .values = {amount.lineValue, amount.slipSum},
                             .button = amount.button,
                             .pressed = [this, &amount] { editAmount(amount); },
                             .height = isKeyed ? 0 : 14,
                             .name = amount.caption.toString().remove(u' ')});
        // All of a column tell the same, so Tab stops at one.
        if (&amount != slipAmounts().data()) {
            control(amount.lineValue)->setFocusPolicy(Qt::NoFocus);
            control(amount.slipSum)->setFocusPolicy(Qt::NoFocus);
        }
    }
}

void CMtmDlg::addButtons() {
    constexpr int kPastOrder = 1312;
    constexpr int kLess = 1314;
    constexpr int kMore = 1315;
    constexpr int kTop = 147;
    constexpr int kPitch = 35;
    const auto place = [](int number) { return QPoint(182, kTop + number * kPitch); };
    ui::BitmapButton* save =
        addButton(1137, u"주문서 저장"_s, place(3), ui::bitmaps::kAdd, [this] { this->save(); });
    ui::BitmapButton* byCode =
        addButton(1010, u"상품코드검색"_s, place(2), ui::bitmaps::kSearch, [this] { addByCode(); });
    addButton(kPastOrder, u"지난주문"_s, place(0), ui::bitmaps::kAdd, [this] { addPastOrder(); });
    addButton(kSearchOn, u"이어찾기"_s, place(1), ui::bitmaps::kSearch, [this] {
        addFromSearch(true);
    })->setEnabled(false);
    QFont twoLines = ui::font(ui::FontHeight::Small);
    twoLines.setPixelSize(twoLines.pixelSize() - 1);
    byCode->setFont(twoLines);
    save->setFont(twoLines);
    addBottomButton(1002, u"삭  제"_s, 1, ui::bitmaps::kDelete, [this] { deleteSelected(); });
    addBottomButton(1000, u"등  록"_s, 2, ui::bitmaps::kAdd, [this] { addFromSearch(false); });
    addMainButton(1003, u"완  료"_s, [this] { finish(); });
    addLeaveButton(1001, u"취 소"_s, [this] {
        if (app::mayLeave(books::Working::Sale)) close(Cancelled);
    });
    ui::BitmapButton* less =
        addButton(kLess, u"－"_s, {}, ui::bitmaps::kSmallConsonant, [this] { step(-1); });
    ui::BitmapButton* more = addButton(kMore, u"+"_s, {}, ui::bitmaps::kSmallConsonant, [this] { step(1); });
    stepper_ = new QuantityStepper(list_, less, more);
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
    setLines(slip.lines);
    showAmounts();
}

void CMtmDlg::setLines(platform::Rows lines) {
    lines_ = std::move(lines);
    details_ = workingDetails();
    stepper_->hide();
    list_->setRows(lines_);
    Won boxes;
    Won bottles;
    for (int row = 0; row < lines_.count(); ++row) {
        boxes += parseWon(lines_.at(row, kBoxColumn));
        bottles += parseWon(lines_.at(row, kBoxColumn + 1));
    }
    const QString count = u"%1품목 %2상자 %3본"_s.arg(lines_.count()).arg(boxes.value()).arg(bottles.value());
    setFittedText(kCount, lines_.isEmpty() ? QString() : count, ui::FontHeight::Small);
}

void CMtmDlg::showLines() {
    setLines(workingLines());
    if (selected_) list_->selectRow(rowOf(*selected_));
}

int CMtmDlg::rowOf(const LineKey& key) const {
    return lines_.find([&](int row) { return keyAt(lines_, row) == key; });
}

void CMtmDlg::showAmounts() {
    const SlipSums sums = slipSums(sums_, app::session().UserField3);
    for (const SlipAmount& amount : slipAmounts()) {
        setAmount(amount.lineValue, amount.of(selectedAmounts_));
        setAmount(amount.slipSum, amount.of(sums));
    }
    handOver(sums_, receivable_);
}

void CMtmDlg::markUnsaved() {
    hasUnsavedLines_ = true;
    hasChangedSince_ = true;
    savedMark_->clear();
    sums_ = workingSums();
}

void CMtmDlg::deselect() {
    selected_.reset();
    selectedAmounts_ = {};
}

void CMtmDlg::addFromSearch(bool isResumed) {
    app::ActionValues& action = app::session().action;
    action.PCode.clear();
    action.SeekValue.clear();
    action.ProductChosen = 0;
    action.ResumesSearch = isResumed;
    const bool byConsonant = app::session().UserField6 == u"Y" && !isResumed;
    ui::runScreen(byConsonant ? app::dialogs::kProductBoard : app::dialogs::kProductSearch);
    if (action.ProductChosen == 1) addProduct(action.PCode);
    control(kSearchOn)->setEnabled(action.Search.isKept);
}

void CMtmDlg::addByCode() {
    if (!app::askText(u"상품코드"_s, app::session().action.GName)) return;
    const QString pcode = app::keypadRequest().KeypadValue1;
    if (!books::productExists(pcode)) {
        ui::message(kUnknownProduct.toString());
        return;
    }
    addProduct(pcode);
}

void CMtmDlg::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    if (text.size() == 1 && text[0] >= u'0' && text[0] <= u'9') {
        scanned_.add(text[0], sinceOpened_.elapsed());
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        const QString barcode = scanned_.take(sinceOpened_.elapsed());
        const QString pcode = barcode.isEmpty() ? QString() : productOfBarcode(barcode);
        if (!pcode.isEmpty()) return addProduct(pcode, true);
        if (!barcode.isEmpty()) return ui::message(u"등록되지 않은 바코드입니다..! [%1]"_s.arg(barcode));
    }
    Screen::keyPressEvent(event);
}

SlipHead CMtmDlg::head() const {
    const app::SessionValues& session = app::session();
    return {session.WorkDate, session.action.JunNo, session.action.GCode, session.action.GName,
            session.action.CustomerKind};
}

void CMtmDlg::addProduct(const QString& pcode, bool isScanned) {
    addLine(pcode, isScanned);
    addScanned();
}

void CMtmDlg::addScanned() {
    for (QString pcode = question_.takeScanned(); !pcode.isEmpty(); pcode = question_.takeScanned())
        addLine(pcode, true);
}

void CMtmDlg::addLine(const QString& pcode, bool isScanned) {
    const int present = lines_.find([&](int row) { return lines_.at(row, 0) == pcode; });
    if (present >= 0) {
        ui::message(u"상품이 이미 등록되어있습니다..!"_s);
        if (!isScanned) return;
        // Who scans one bottle more finds the + at hand.
        list_->showChosen(present);
        selectLine(present);
        stepper_->showAt(present, kBoxColumn + 1);
        return;
    }
    // A frequent product may have left the price list since.
    const std::optional<ProductName> product = productName(pcode);
    if (!product) {
        ui::message(kUnknownProduct.toString());
        return;
    }
    const auto quantities = question_.ask(pcode, std::nullopt, isScanned);
    if (!quantities) return;
    const SlipLine line = newLine(head(), pcode, *product, *quantities);
    if (insertLine(line)) markUnsaved();
    showLines();
    // The list is short: the new line may stand below what it shows.
    list_->scrollTo(list_->model()->index(rowOf({line.PCode, line.Box, line.Bon}), 0));
    showAmounts();
}

void CMtmDlg::addPastOrder() {
    const bool isLost = !isPastOrder_ || hasChangedSince_;
    if (!takePastOrder(question_.history(), head(), !lines_.isEmpty(), isLost)) return;
    deselect();
    markUnsaved();
    isPastOrder_ = true;
    hasChangedSince_ = false;
    showLines();
    showAmounts();
}

bool CMtmDlg::isChosenTwice() {
    if (linesOf(*selected_) < 2) return false;
    ui::message(u"같은 상품, 같은 수량의 줄이 여러개라 수정할수 없습니다..! 삭제후 다시 등록하세요!!"_s);
    showLines();
    showAmounts();
    return true;
}

void CMtmDlg::selectLine(int row) {
    stepper_->hide();
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
    const auto quantities = question_.ask(selected_->PCode, quantitiesOf(*selected_));
    if (quantities) changeTo(*quantities);
    addScanned();
}

void CMtmDlg::step(int by) {
    if (!selected_ || isChosenTwice()) return;
    const int column = stepper_->column();
    const auto quantities = stepper_->stepped(quantitiesOf(*selected_), by);
    if (!quantities || !question_.isTaken(selected_->PCode, *quantities)) return;
    if (!question_.mayReprice(*selected_, selectedAmounts_) || !changeTo(*quantities)) return;
    stepper_->showAt(rowOf(*selected_), column);
}

bool CMtmDlg::changeTo(const Quantities& quantities) {
    const auto [boxes, bottles] = quantities;
    const LineKey changed{selected_->PCode, QString::number(boxes), QString::number(bottles)};
    // Two lines of the same product and quantities could not be told apart any more.
    if (changed != *selected_ && rowOf(changed) >= 0) {
        ui::message(u"상품이 이미 등록되어있습니다..!"_s);
        return false;
    }
    const app::ActionValues& action = app::session().action;
    const PricedLine priced = priceLine(action.GCode, action.CustomerKind, selected_->PCode, boxes, bottles);
    // Without a contract a product that has left the price list would become one for nothing.
    if (priced.source != PriceSource::Contract && !books::productExists(selected_->PCode)) {
        ui::message(kUnknownProduct.toString());
        return false;
    }
    const bool isChanged = replaceQuantities(*selected_, boxes, bottles, priced.amounts);
    if (isChanged) {
        selected_ = changed;
        selectedAmounts_ = priced.amounts;
        markUnsaved();
    }
    showLines();
    showAmounts();
    return isChanged;
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
    const QString product = details_.value({selected_->PCode, selected_->Box, selected_->Bon}).PName + u' ' +
                            quantityText(quantitiesOf(*selected_));
    if (!app::askNumber(amount.title.toString(), formatWon(amount.of(selectedAmounts_)), product)) return;
    const LineAmounts changed = amount.apply(selectedAmounts_, parseWon(app::keypadRequest().KeypadValue1));
    if (!replaceAmounts(*selected_, changed)) return;
    selectedAmounts_ = changed;
    markUnsaved();
    showLines();
    showAmounts();
}

void CMtmDlg::explainPrice() {
    if (!selected_) {
        ui::message(u"매출상품이 선택되지 않았습니다..!"_s);
        return;
    }
    const app::ActionValues& action = app::session().action;
    const auto [boxes, bottles] = quantitiesOf(*selected_);
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

bool CMtmDlg::areFreeLinesMeant() const {
    QStringList names;
    for (const LineDetail& line : details_) {
        if (line.isFree) names << line.PName;
    }
    names.sort();
    return names.isEmpty() ||
           ui::confirm(u"금액이 0원인 품목이 있습니다..! [%1] 그대로 진행할까요?"_s.arg(listed(names)),
                       u"0원 품목"_s);
}

void CMtmDlg::finish() {
    app::SessionValues& session = app::session();
    if (isWorkingSlipEmpty()) {
        ui::message(u"매출상품이 선택되지 않았습니다..!"_s);
        return;
    }
    if (!areFreeLinesMeant()) return;
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
