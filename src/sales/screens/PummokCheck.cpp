#include "sales/screens/PummokCheck.h"

#include <QComboBox>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "platform/Hangul.h"
#include "sales/ProductQuery.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/WaitCursor.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;

CPummokCheck::CPummokCheck() : NarrowScreen(app::dialogs::kProductSearch) {
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

    list_ = addList(1090, {0, 68, 240, 214});
    const ui::ListColumn columns[] = {{u"코드"_s, 50}, {u"상품명"_s, 150}, {u"용량"_s, 60}, {u"용도"_s, 50}};
    list_->setColumns(columns);
    describe(list_, u"상품 목록"_s);
    connect(list_, &ui::ReportList::rowClicked, this, &CPummokCheck::choose);
    connect(list_, &ui::ReportList::rowDoubleClicked, this, [this](int row) {
        choose(row);
        close(Accepted);
    });

    setCancelButton(addBottomButton(1003, u"취  소"_s, 0, ui::bitmaps::kCancel, [this] { cancel(); }));
    addBottomButton(1002, {}, 1, ui::bitmaps::kBlank)->setEnabled(false);
    addBottomButton(1001, u"체  크"_s, 2, ui::bitmaps::kAdd, [this] { showFrequent(); });
    setDefaultButton(addBottomButton(1000, u"확  인"_s, 3, ui::bitmaps::kConfirm, [this] { confirm(); }));

    addNarrowing(list_, 37, platform::hangul::matches);
    // A row that is not shown any more is not the choice either.
    connect(list_, &ui::ReportList::narrowed, this, &CPummokCheck::forgetChoice);
    search();
    list_->setFocus();
}

void CPummokCheck::search() {
    const ui::WaitCursor wait;
    forgetChoice();
    const app::ActionValues& action = app::session().action;
    list_->setRows(
        products(action.SeekValue, classCodes_.value(class_->currentIndex()), action.CustomerKind));
}

void CPummokCheck::showFrequent() {
    const ui::WaitCursor wait;
    forgetChoice();
    list_->setRows(frequentProducts(app::session().action.CustomerKind));
}

void CPummokCheck::forgetChoice() {
    app::session().action.PCode.clear();
    app::session().action.ProductChosen = 0;
}

void CPummokCheck::choose(int row) {
    app::session().action.PCode = list_->text(row, 0);
    app::session().action.ProductChosen = 1;
}

void CPummokCheck::confirm() {
    app::ActionValues& action = app::session().action;
    action.SeekValue.clear();
    if (action.PCode.isEmpty()) {
        ui::message(u"품목을 먼저 선택하세요!"_s);
        return;
    }
    action.ProductChosen = 1;
    action.JGubun = productClass(action.PCode);
    close(Accepted);
}

void CPummokCheck::cancel() {
    forgetChoice();
    close(Cancelled);
}

}  // namespace sales
