#include "collect/screens/CollectionListDlg.h"

#include "app/Dialogs.h"
#include "app/Session.h"
#include "books/CollectionSlip.h"

namespace collect {

using namespace Qt::Literals::StringLiterals;

CCollectionListDlg::CCollectionListDlg()
    : SlipListScreen(app::dialogs::kCollectionList, app::dialogs::kCollectionEntry) {
    addHeading(65535, ui::bitmaps::kSlipsHeading, u"입금전표"_s);
    // The third column carries the customer code under this title.
    addSlips({0, 34, 240, 248}, u"입금전표 목록"_s,
             {{u"번호"_s, 50}, {u"거래처명"_s, 180}, {u"결제금액"_s, 50}});
    addButtons(u"추  가"_s, u"입금전표내역을 삭제할까요?"_s, u"입금전표삭제"_s);
}

platform::Rows CCollectionListDlg::loadSlips() {
    app::ActionValues& action = app::session().action;
    action.JunNo.clear();
    action.GName.clear();
    action.GCode.clear();
    return books::collectionsOfDay(app::session().UserID, app::session().WorkDate);
}

void CCollectionListDlg::takeSlip(const platform::Rows& slips, int row) {
    app::session().action.JunNo = slips.at(row, 0);
    app::session().action.GName = slips.at(row, 1);
}

void CCollectionListDlg::openSlip() {
    closeAndOpen(app::dialogs::kCollectionEntry);
}

void CCollectionListDlg::deleteSlip() {
    // No word about one that could not be deleted: the list still shows it.
    books::removeCollections(app::session().WorkDate, app::session().action.JunNo);
}

}  // namespace collect
