#include "container/screens/ContainerSearchDlg.h"

#include "app/Dialogs.h"
#include "container/ContainerProduct.h"

namespace container {

using namespace Qt::Literals::StringLiterals;

CContainerSearchDlg::CContainerSearchDlg()
    : ProductSearchScreen(app::dialogs::kContainerSearch,
                          {&app::ActionValues::ContainerSearchKey, &app::ActionValues::SelectedContainerPCode,
                           &app::ActionValues::ContainerSearchResult}) {
    ui::ReportList* list = addProducts({0, 0, 240, 282}, u"용공 상품 목록"_s, 120);
    const auto load = [] { return containerProducts(app::session().action.ContainerSearchKey); };
    addButtons(u"전 체"_s, ui::bitmaps::kListAll, [this, load] {
        app::session().action.ContainerSearchKey.clear();
        listProducts(load);
    });
    listProducts(load);
    list->setFocus();
}

}  // namespace container
