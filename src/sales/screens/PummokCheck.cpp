#include "sales/screens/PummokCheck.h"

#include <QComboBox>
#include <QLineEdit>
#include <QScrollBar>
#include <QTimer>

#include "app/Dialogs.h"
#include "platform/Hangul.h"
#include "sales/ProductQuery.h"
#include "sales/WorkingSlip.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRegularButton = 1311;

enum Column { kCode, kName, kSize, kUse, kColumns };

}  // namespace

CPummokCheck::CPummokCheck()
    : ProductSearchScreen(
          app::dialogs::kProductSearch,
          {&app::ActionValues::SeekValue, &app::ActionValues::PCode, &app::ActionValues::ProductChosen}) {
    constexpr int kRowHeight = 32;
    constexpr int kNarrowLineWidth = 116;
    addClasses();
    addButton(1004, u"검  색"_s, {182, 2}, ui::bitmaps::kSearch, [this] { show(kByClass); });
    list_ = addProducts({0, 68, 240, 214}, u"상품 목록"_s, 150);
    markProducts();
    list_->setCellDetails(kRowHeight, [this](const platform::Rows& rows, int row, int column) {
        return below(rows, row, column);
    });
    addButtons(u"체  크"_s, ui::bitmaps::kAdd, [this] { show(kFrequent); });
    addNarrowing(list_, 37, platform::hangul::matches, kNarrowLineWidth);
    addButton(kRegularButton, u"단골"_s, {122, 37}, ui::bitmaps::kNarrow, [this] { show(kRegular); });
    app::ActionValues& action = app::session().action;
    if (action.ResumesSearch) action.SeekValue = action.Search.seek;
    seek_ = action.SeekValue;
    action.ResumesSearch ? resume() : show(kByClass);
    action.ResumesSearch = false;
    list_->setFocus();
}

CPummokCheck::~CPummokCheck() {
    app::ActionValues& action = app::session().action;
    if (action.ProductChosen != 1) return;
    const auto* typed = static_cast<QLineEdit*>(control(ui::kNarrowLine));
    action.Search = {.isKept = true,
                     .list = shown_,
                     .entry = class_->currentIndex(),
                     .seek = seek_,
                     .typed = typed->text(),
                     .scrolled = list_->verticalScrollBar()->value()};
}

void CPummokCheck::addClasses() {
    class_ = addCombo(1005, {2, 2, 176, 32});
    class_->setFont(ui::font(ui::FontHeight::Small));
    describe(class_, u"주류구분"_s);
    class_->addItem(u"전체"_s);
    classCodes_.append(QString());
    for (const ProductClass& productClass : productClasses()) {
        class_->addItem(productClass.name);
        classCodes_.append(productClass.code);
    }
}

void CPummokCheck::markProducts() {
    const app::SessionValues& session = app::session();
    const PurchaseHistory history =
        PurchaseHistory::of(session.action.GCode, session.WorkDate, session.action.JunNo, session.UserID);
    for (const PurchaseHistory::LastPurchase& last : history.products()) {
        regular_ << last.purchase.PCode;
        last_.insert(last.purchase.PCode, last);
    }
    const platform::Rows lines = workingLines();
    for (int row = 0; row < lines.count(); ++row) {
        const LineKey key = keyAt(lines, row);
        onSlip_.insert(key.PCode, {platform::parseInteger(key.Box), platform::parseInteger(key.Bon)});
    }
}

void CPummokCheck::show(List list) {
    shown_ = list;
    listProducts([this, list] { return load(list); });
}

platform::RowSource CPummokCheck::load(List list) const {
    const app::ActionValues& action = app::session().action;
    if (list == kFrequent) return platform::wholeRows(frequentProducts(action.CustomerKind));
    if (list == kRegular) return platform::wholeRows(regularProducts());
    return products(action.SeekValue, classCodes_.value(class_->currentIndex()), action.CustomerKind);
}

platform::Rows CPummokCheck::regularProducts() const {
    platform::Rows rows{.columns = kColumns, .cells = {}};
    for (const QString& code : regular_) {
        const auto product = listedProduct(code);
        if (!product || !product->isOfferedTo(app::session().action.CustomerKind)) continue;
        rows.cells << code << product->Pname << product->Size << product->Gubun;
    }
    return rows;
}

void CPummokCheck::resume() {
    const app::ActionValues::SearchPlace place = app::session().action.Search;
    class_->setCurrentIndex(place.entry);
    show(List(place.list));
    static_cast<QLineEdit*>(control(ui::kNarrowLine))->setText(place.typed);
    // A list that is not shown yet has nothing to scroll.
    QTimer::singleShot(0, list_, [this, place] {
        if (place.scrolled > 0) list_->readToEnd();
        list_->verticalScrollBar()->setValue(place.scrolled);
    });
}

ui::CellDetail CPummokCheck::below(const platform::Rows& rows, int row, int column) {
    const QString& product = rows.at(row, kCode);
    if (column == kName) {
        const QString& size = rows.at(row, kSize);
        return {size.isEmpty() ? priceOf(product) : QString(size + u' ' + priceOf(product))};
    }
    if (column == kCode) {
        const auto onSlip = onSlip_.constFind(product);
        if (onSlip != onSlip_.cend()) return {u"√"_s + shortQuantityText(*onSlip), true};
        const auto last = last_.constFind(product);
        if (last != last_.cend()) return {shortQuantityText(last->purchase.quantities)};
    }
    if (column == kSize) {
        const auto last = last_.constFind(product);
        // The day without its year.
        if (last != last_.cend()) return {last->DDate.mid(5)};
    }
    return {};
}

const QString& CPummokCheck::priceOf(const QString& product) {
    const auto known = prices_.constFind(product);
    if (known != prices_.cend()) return *known;
    const app::ActionValues& action = app::session().action;
    const UnitCost unit = unitCost(action.GCode, action.CustomerKind, product);
    return *prices_.insert(product, u"상자 %1 본 %2"_s.arg(platform::groupThousands(unit.box),
                                                           platform::groupThousands(unit.bottle)));
}

void CPummokCheck::confirmed(const QString& product) {
    app::session().action.JGubun = productClass(product);
}

}  // namespace sales
