#include "sales/screens/PummokCheck.h"

#include <QComboBox>

#include "app/Dialogs.h"
#include "platform/Hangul.h"
#include "sales/ProductQuery.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;

CPummokCheck::CPummokCheck()
    : ProductSearchScreen(
          app::dialogs::kProductSearch,
          {&app::ActionValues::SeekValue, &app::ActionValues::PCode, &app::ActionValues::ProductChosen}) {
    class_ = addCombo(1005, {2, 2, 176, 32});
    class_->setFont(ui::font(ui::FontHeight::Small));
    describe(class_, u"주류구분"_s);
    class_->addItem(u"전체"_s);
    classCodes_.append(QString());
    for (const ProductClass& productClass : productClasses()) {
        class_->addItem(productClass.name);
        classCodes_.append(productClass.code);
    }
    addButton(1004, u"검  색"_s, {182, 2}, ui::bitmaps::kSearch, [this] { search(); });

    ui::ReportList* list = addProducts({0, 68, 240, 214}, u"상품 목록"_s, 150);
    addButtons(u"체  크"_s, ui::bitmaps::kAdd, [this] {
        listProducts(
            [] { return platform::wholeRows(frequentProducts(app::session().action.CustomerKind)); });
    });
    addNarrowing(list, 37, platform::hangul::matches);
    search();
    list->setFocus();
}

void CPummokCheck::search() {
    listProducts([this] {
        const app::ActionValues& action = app::session().action;
        return products(action.SeekValue, classCodes_.value(class_->currentIndex()), action.CustomerKind);
    });
}

void CPummokCheck::confirmed(const QString& product) {
    app::session().action.JGubun = productClass(product);
}

}  // namespace sales
