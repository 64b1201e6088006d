#include "container/screens/ContainerSearchDlg.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "container/ContainerProduct.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/WaitCursor.h"

namespace container {
namespace {

using namespace Qt::Literals::StringLiterals;

void forgetChoice() {
    app::session().action.SelectedContainerPCode.clear();
    app::session().action.ContainerSearchResult = 0;
}

}  // namespace

CContainerSearchDlg::CContainerSearchDlg() : Screen(app::dialogs::kContainerSearch) {
    list_ = addList(1090, {0, 0, 240, 282});
    describe(list_, u"용공 상품 목록"_s);
    connect(list_, &ui::ReportList::rowClicked, this, &CContainerSearchDlg::choose);
    connect(list_, &ui::ReportList::rowDoubleClicked, this, [this](int row) {
        choose(row);
        close(Accepted);
    });

    setCancelButton(addBottomButton(1003, u"취  소"_s, 0, ui::bitmaps::kCancel, [this] { cancel(); }));
    addBottomButton(1002, {}, 1, ui::bitmaps::kBlank)->setEnabled(false);
    addBottomButton(1001, u"전 체"_s, 2, ui::bitmaps::kListAll, [this] {
        app::session().action.ContainerSearchKey.clear();
        fill();
    });
    setDefaultButton(addBottomButton(1000, u"확  인"_s, 3, ui::bitmaps::kConfirm, [this] { confirm(); }));

    fill();
    list_->setFocus();
}

void CContainerSearchDlg::fill() {
    const ui::WaitCursor wait;
    forgetChoice();
    const ui::ListColumn columns[] = {{u"코드"_s, 50}, {u"상품명"_s, 120}, {u"용량"_s, 60}, {u"용도"_s, 50}};
    list_->setColumns(columns);
    list_->setRows(containerProducts(app::session().action.ContainerSearchKey));
}

void CContainerSearchDlg::choose(int row) {
    app::session().action.SelectedContainerPCode = list_->text(row, 0);
    app::session().action.ContainerSearchResult = 1;
}

void CContainerSearchDlg::confirm() {
    app::ActionValues& action = app::session().action;
    // The key goes whether or not a product is chosen.
    action.ContainerSearchKey.clear();
    if (action.SelectedContainerPCode.isEmpty()) {
        ui::message(u"품목을 먼저 선택하세요!"_s);
        return;
    }
    action.ContainerSearchResult = 1;
    close(Accepted);
}

void CContainerSearchDlg::cancel() {
    forgetChoice();
    close(Cancelled);
}

}  // namespace container
