#include "sales/screens/GaraeSeek.h"

#include <QLabel>

#include "app/ApprovedPayments.h"
#include "app/Dialogs.h"
#include "app/PaymentQuestion.h"
#include "app/Session.h"
#include "sales/CustomerQuery.h"
#include "sales/SlipLine.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"
#include "sales/screens/HandOver.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kTotalCount = 1056;
constexpr int kPrintedCount = 1057;
constexpr int kUnprintedCount = 1058;

}  // namespace

CGaraeSeek::CGaraeSeek() : Screen(app::dialogs::kSlipList) {
    list_ = addList(1054, {0, 0, 240, 242});
    const ui::ListColumn columns[] = {{u"구분"_s, 60}, {u"거래처명"_s, 180}, {u"전표"_s, 50}};
    list_->setColumns(columns);
    describe(list_, u"주문전표 목록"_s);
    connect(list_, &ui::ReportList::rowClicked, this, &CGaraeSeek::choose);
    connect(list_, &ui::ReportList::rowDoubleClicked, this, [this](int row) {
        choose(row);
        openSlip();
    });

    const struct {
        int control;
        QString caption;
    } counts[] = {{kTotalCount, u"전체"_s}, {kPrintedCount, u"발행"_s}, {kUnprintedCount, u"미발행"_s}};
    for (int i = 0; i < int(std::size(counts)); ++i) {
        addLabel(0, counts[i].caption, {2 + i * 60, 244, 56, 16}, ui::FontHeight::Small, Qt::AlignCenter);
        describe(addLabel(counts[i].control, {}, {2 + i * 60, 260, 56, 20}, ui::FontHeight::Small,
                          Qt::AlignCenter),
                 counts[i].caption);
    }

    addButton(1004, u"결  제"_s, {182, 246}, ui::bitmaps::kPay, [this] { pay(); });
    setCancelButton(
        addBottomButton(1003, u"취  소"_s, 0, ui::bitmaps::kCancel, [this] { close(Cancelled); }));
    addBottomButton(1001, u"삭  제"_s, 1, ui::bitmaps::kDelete, [this] { deleteChosen(); });
    addBottomButton(1002, u"추 가"_s, 2, ui::bitmaps::kAdd, [this] {
        ui::runScreen(app::dialogs::kConsonantBoard);
        closeIfDone();
    });
    setDefaultButton(addBottomButton(1000, u"확  인"_s, 3, ui::bitmaps::kConfirm, [this] { openSlip(); }));

    fill();
    list_->setFocus();
}

void CGaraeSeek::fill() {
    const SlipList slips = slipsOfDay(app::session().UserID, app::session().WorkDate);
    list_->setRows(slips.slips);
    setText(kTotalCount, u" %1 건"_s.arg(slips.printed + slips.unprinted));
    setText(kPrintedCount, u" %1 건"_s.arg(slips.printed));
    setText(kUnprintedCount, u" %1 건"_s.arg(slips.unprinted));
    // A refilled list shows no choice, so none is kept.
    app::ActionValues& action = app::session().action;
    action.JunNo.clear();
    action.SlipState.clear();
}

void CGaraeSeek::choose(int row) {
    app::ActionValues& action = app::session().action;
    action.JunNo = list_->text(row, 2);
    action.GName = list_->text(row, 1);
    action.SlipState = list_->text(row, 0);
    // The list knows the name only; the slip's own lines say who the customer is.
    action.GCode.clear();
}

void CGaraeSeek::closeIfDone() {
    if (app::session().SlipDone == 1) {
        close(Accepted);
    } else {
        fill();
    }
}

void CGaraeSeek::openSlip() {
    if (app::session().action.JunNo.isEmpty()) {
        ui::message(u"전표를 선택하세요!"_s);
        return;
    }
    ui::runScreen(app::dialogs::kSalesSlip);
    closeIfDone();
}

void CGaraeSeek::pay() {
    app::SessionValues& session = app::session();
    app::ActionValues& action = session.action;
    if (action.JunNo.isEmpty()) {
        ui::message(u"전표를 선택하세요!"_s);
        return;
    }
    const auto slip = sales::openSlip(session.UserID, session.WorkDate, action.JunNo);
    if (!slip) {
        ui::message(u"주문서를 열지 못했습니다..!"_s);
        return;
    }
    action.GCode = slip->GCode;
    handOver(slip->sums, customerAccount(slip->GCode).CJMoney);
    ui::runScreen(app::dialogs::kCollectionEntry);
    closeIfDone();
}

void CGaraeSeek::deleteChosen() {
    if (!ui::confirm(u"주문전표내역을 삭제할까요?"_s, u"주문전표삭제"_s)) return;
    const app::SessionValues& session = app::session();
    if (session.action.JunNo.isEmpty()) {
        ui::message(u"삭제할 전표를 선택하세요!"_s);
        return;
    }
    if (!app::mayDelete(session.WorkDate, session.action.JunNo, {})) return fill();
    // A paid slip that was saved again is unprinted, but its card payment stands all the same.
    const bool alsoFollowers = app::mayDeletePayments(session.action.SlipState == kPaid);
    const bool isDeleted = deleteSlip(session.WorkDate, session.action.JunNo, alsoFollowers, session.UserID);
    ui::message(!isDeleted ? u"주문전표를 삭제하지 못했습니다..!"_s
                           : u"선택된 주문전표와 입금표 / 인수증을 삭제하였습니다..!"_s);
    fill();
}

}  // namespace sales
