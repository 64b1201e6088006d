#include "collect/screens/CollectionListDlg.h"

#include "app/ApprovedPayments.h"
#include "app/Dialogs.h"
#include "app/Session.h"
#include "books/CollectionSlip.h"
#include "books/DaySlips.h"
#include "books/PaymentJournal.h"

namespace collect {

using namespace Qt::Literals::StringLiterals;

namespace {

/// What came in, and what is owed where any is.
QString moneyText(platform::Won received, platform::Won unpaid) {
    if (unpaid.isZero()) return app::wonText(received);
    const QString owed = u"외상 "_s + app::wonText(unpaid);
    return received.isZero() ? owed : app::wonText(received) + u' ' + owed;
}

}  // namespace

CCollectionListDlg::CCollectionListDlg()
    : SlipListScreen(app::dialogs::kCollectionList, app::dialogs::kCollectionEntry) {
    addHeading(65535, ui::bitmaps::kSlipsHeading, u"입금전표"_s);
    // The third column carries the customer code under this title.
    addSlips({0, 34, 240, 248}, u"입금전표 목록"_s,
             {{u"번호"_s, 50}, {u"거래처명"_s, 180}, {u"결제금액"_s, 50}});
    addButtons(u"추  가"_s, u"입금전표내역을 삭제할까요?"_s, u"입금전표삭제"_s, ui::MessageIcon::Information);
}

app::ListedSlips CCollectionListDlg::loadSlips() {
    const app::SessionValues& session = app::session();
    app::ActionValues& action = app::session().action;
    action.JunNo.clear();
    action.GName.clear();
    action.GCode.clear();
    app::ListedSlips slips{.rows = books::collectionsOfDay(session.UserID, session.WorkDate)};
    const books::DaySlips day(session.WorkDate, session.UserID);
    platform::Won takenIn, unpaid;
    names_.clear();
    for (int row = 0; row < slips.rows.count(); ++row) {
        const QString junNo = slips.rows.at(row, 0);
        QString& name = slips.rows.cells[row * slips.rows.columns + 1];
        names_ << name;
        if (day.isCardUnapproved(junNo)) {
            name += u" (%1)"_s.arg(day.isPaymentOpen(junNo) ? books::kBeingAsked : books::kNotApproved);
        }
        const QString payment = day.paymentState(junNo);
        const QString state =
            payment.isEmpty() ? day.printState(books::Paper::CollectionSlip, junNo) : payment;
        const books::CollectionSlip* slip = day.collection(junNo, slips.rows.at(row, 2));
        const books::CollectionSlip shown = slip ? *slip : books::CollectionSlip();
        takenIn += books::received(shown);
        unpaid += shown.UnderMoney;
        slips.details << ui::RowDetail{state, moneyText(books::received(shown), shown.UnderMoney)};
    }
    if (!slips.rows.isEmpty()) slips.total = u"합계 "_s + moneyText(takenIn, unpaid);
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
