#include "app/ProductSearchScreen.h"

#include "ui/Messages.h"
#include "ui/WaitCursor.h"

namespace app {

using namespace Qt::Literals::StringLiterals;

ui::ReportList* ProductSearchScreen::addProducts(const QRect& area, const QString& name, int nameWidth) {
    list_ = addList(
        1090, area, name, {{u"코드"_s, 50}, {u"상품명"_s, nameWidth}, {u"용량"_s, 60}, {u"용도"_s, 50}},
        [this](int row) { choose(row); }, [this] { close(Accepted); });
    list_->setEmptyText(u"찾는 상품이 없습니다."_s);
    // A row that is not shown any more is not the choice either.
    connect(list_, &ui::ReportList::narrowed, this, &ProductSearchScreen::forgetChoice);
    return list_;
}

void ProductSearchScreen::addButtons(const QString& listCaption, ui::ButtonBitmaps bitmaps,
                                     std::function<void()> list) {
    addLeaveButton(1003, u"취  소"_s, [this] {
        forgetChoice();
        close(Cancelled);
    });
    addBottomButton(1002, {}, 1, ui::bitmaps::kBlank, {});
    addBottomButton(1001, listCaption, 2, bitmaps, std::move(list));
    addMainButton(1000, u"확  인"_s, [this] { confirm(); });
}

void ProductSearchScreen::listProducts(const std::function<platform::RowSource()>& load) {
    const ui::WaitCursor wait;
    forgetChoice();
    list_->readRows(load());
}

void ProductSearchScreen::forgetChoice() {
    (session().action.*values_.product).clear();
    session().action.*values_.isChosen = 0;
}

void ProductSearchScreen::choose(int row) {
    session().action.*values_.product = list_->rows().at(row, 0);
    session().action.*values_.isChosen = 1;
}

void ProductSearchScreen::confirm() {
    // What the search was for goes whether or not a product is chosen.
    (session().action.*values_.seek).clear();
    const QString& product = session().action.*values_.product;
    if (product.isEmpty()) {
        ui::message(u"품목을 먼저 선택하세요!"_s);
        return;
    }
    session().action.*values_.isChosen = 1;
    confirmed(product);
    close(Accepted);
}

}  // namespace app
