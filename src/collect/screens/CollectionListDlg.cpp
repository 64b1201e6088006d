#include "collect/screens/CollectionListDlg.h"

#include "app/ApprovedPayments.h"
#include "app/Dialogs.h"
#include "app/Session.h"
#include "books/CollectionSlip.h"
#include "books/PaymentJournal.h"

namespace collect {

using namespace Qt::Literals::StringLiterals;

CCollectionListDlg::CCollectionListDlg()
    : SlipListScreen(app::dialogs::kCollectionList, app::dialogs::kCollectionEntry) {
    addHeading(65535, ui::bitmaps::kSlipsHeading, u"입금전표"_s);
    // The third column carries the customer code under this title.
    addSlips({0, 34, 240, 248}, u"입금전표 목록"_s,
             {{u"번호"_s, 50}, {u"거래처명"_s, 180}, {u"결제금액"_s, 50}});
    addButtons(u"추  가"_s, u"입금전표내역을 삭제할까요?"_s, u"입금전표삭제"_s, ui::MessageIcon::Information);
}

platform::Rows CCollectionListDlg::loadSlips() {
    const app::SessionValues& session = app::session();
    app::ActionValues& action = app::session().action;
    action.JunNo.clear();
    action.GName.clear();
    action.GCode.clear();
    platform::Rows slips = books::collectionsOfDay(session.UserID, session.WorkDate);
    const QStringList unapproved = books::numbersWithoutApproval(session.UserID, session.WorkDate);
    names_.clear();
    for (int row = 0; row < slips.count(); ++row) {
        QString& name = slips.cells[row * slips.columns + 1];
        const QString junNo = slips.cell(row, 0);
        names_ << name;
        if (!unapproved.contains(junNo)) continue;
        const bool isOpen = books::hasUnsettledPayment(session.WorkDate, junNo, session.UserID);
        name += u" (%1)"_s.arg(isOpen ? books::kBeingAsked : books::kNotApproved);
    }
    return slips;
}

void CCollectionListDlg::takeSlip(const platform::Rows& slips, int row) {
    app::session().action.JunNo = slips.at(row, 0);
    app::session().action.GName = names_.value(row);
}

void CCollectionListDlg::openSlip() {
    closeAndOpen(app::dialogs::kCollectionEntry);
}

void CCollectionListDlg::deleteSlip() {
    if (!app::mayDeletePayments()) return;
    // No word about one that could not be deleted: the list still shows it.
    const app::SessionValues& session = app::session();
    books::removeCollections(session.WorkDate, session.action.JunNo, session.UserID);
}

}  // namespace collect
