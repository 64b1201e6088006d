#include "collect/screens/CollectionListDlg.h"

#include <QLabel>

#include "app/ApprovedPayments.h"
#include "app/Dialogs.h"
#include "app/PaymentQuestion.h"
#include "app/Session.h"
#include "books/CollectionSlip.h"
#include "books/PaymentJournal.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"
#include "ui/WaitCursor.h"

namespace collect {

using namespace Qt::Literals::StringLiterals;

CCollectionListDlg::CCollectionListDlg() : Screen(app::dialogs::kCollectionList) {
    addPicture(65535, ui::bitmaps::kSlipsHeading, {0, 0});
    setTextColour(addLabel(0, u"입금전표"_s, {38, 0, 198, 31}, ui::FontHeight::Title), Qt::white);
    list_ = addList(1054, {0, 34, 240, 248});
    // The third column carries the customer code under this title.
    const ui::ListColumn columns[] = {{u"번호"_s, 50}, {u"거래처명"_s, 180}, {u"결제금액"_s, 50}};
    list_->setColumns(columns);
    describe(list_, u"입금전표 목록"_s);
    connect(list_, &ui::ReportList::rowClicked, this, &CCollectionListDlg::choose);
    connect(list_, &ui::ReportList::rowDoubleClicked, this, [this](int row) {
        choose(row);
        ui::runScreen(app::dialogs::kCollectionEntry);
        closeIfDone();
    });

    setCancelButton(
        addBottomButton(1003, u"취  소"_s, 0, ui::bitmaps::kCancel, [this] { close(Cancelled); }));
    addBottomButton(1001, u"삭  제"_s, 1, ui::bitmaps::kDelete, [this] { deleteChosen(); });
    addBottomButton(1002, u"추  가"_s, 2, ui::bitmaps::kAdd, [this] {
        ui::runScreen(app::dialogs::kConsonantBoard);
        closeIfDone();
    });
    setDefaultButton(addBottomButton(1000, u"확  인"_s, 3, ui::bitmaps::kConfirm, [this] { openHere(); }));

    fill();
    list_->setFocus();
}

void CCollectionListDlg::fill() {
    const ui::WaitCursor wait;
    const app::SessionValues& session = app::session();
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
    list_->setRows(slips);
    app::session().action.JunNo.clear();
    app::session().action.GName.clear();
    app::session().action.GCode.clear();
}

void CCollectionListDlg::choose(int row) {
    app::session().action.JunNo = list_->text(row, 0);
    app::session().action.GName = names_.value(row);
}

void CCollectionListDlg::closeIfDone() {
    if (app::session().SlipDone == 1) {
        close(Accepted);
    } else {
        fill();
    }
}

void CCollectionListDlg::openHere() {
    if (app::session().action.JunNo.isEmpty()) {
        ui::message(u"전표를 선택하세요!"_s);
    } else {
        closeAndOpen(app::dialogs::kCollectionEntry);
    }
}

void CCollectionListDlg::deleteChosen() {
    if (!ui::confirm(u"입금전표내역을 삭제할까요?"_s, u"입금전표삭제"_s)) return;
    if (app::session().action.JunNo.isEmpty()) {
        ui::message(u"삭제할 전표를 선택하세요!"_s);
        return;
    }
    if (!app::mayDeletePayments()) return;
    // No word about one that could not be deleted: the list still shows it.
    const app::SessionValues& session = app::session();
    if (app::mayDelete(session.WorkDate, session.action.JunNo, {}))
        books::removeCollections(session.WorkDate, session.action.JunNo, session.UserID);
    fill();
}

}  // namespace collect
