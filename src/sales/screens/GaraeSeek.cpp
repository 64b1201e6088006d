#include "sales/screens/GaraeSeek.h"

#include <QLabel>
#include <QSet>

#include "app/ApprovedPayments.h"
#include "app/Dialogs.h"
#include "app/Session.h"
#include "books/Customer.h"
#include "sales/SlipLine.h"
#include "sales/SlipStore.h"
#include "sales/UnvisitedOrders.h"
#include "sales/WorkingSlip.h"
#include "sales/screens/HandOver.h"
#include "ui/BitmapButton.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

/// How many slips there are, and how many of them printed and not.
constexpr int kCounts[] = {1056, 1057, 1058};
constexpr QStringView kCountNames[] = {u"전체", u"발행", u"미발행"};
constexpr int kUnvisitedButton = 1062;

app::ListedSlips listed(const SlipList& slips) {
    app::ListedSlips listed{.rows = slips.slips, .details = {}, .total = {}};
    platform::Won total;
    QSet<QString> counted;
    for (int row = 0; row < slips.slips.count(); ++row) {
        const QString& junNo = slips.slips.at(row, 2);
        const platform::Won amount = slips.amounts[row];
        listed.details << ui::RowDetail{junNo + u"  "_s + slips.states[row], app::wonText(amount)};
        // What nobody has delivered is not sold; a slip that is listed twice is sold once.
        if (slips.states[row] == kUnvisited || counted.contains(junNo)) continue;
        counted << junNo;
        total += amount;
    }
    if (!counted.isEmpty()) listed.total = u"합계 "_s + app::wonText(total);
    return listed;
}

}  // namespace

CGaraeSeek::CGaraeSeek() : SlipListScreen(app::dialogs::kSlipList, app::dialogs::kSalesSlip) {
    addSlips({0, 0, 240, 242}, u"주문전표 목록"_s, {{u"구분"_s, 60}, {u"거래처명"_s, 180}, {u"전표"_s, 50}},
             false);
    unvisited_ = addButton(kUnvisitedButton, {}, {ui::kGridLeft, 218}, ui::bitmaps::kWideAmount,
                           [this] { openUnvisited(); });
    for (int i = 0; i < int(std::size(kCounts)); ++i) {
        const QString name = kCountNames[i].toString();
        addLabel(0, name, {2 + i * 60, 244, 56, 16}, ui::FontHeight::Small, Qt::AlignCenter);
        describe(addLabel(kCounts[i], {}, {2 + i * 60, 260, 56, 20}, ui::FontHeight::Small, Qt::AlignCenter),
                 name);
    }
    addButton(1004, u"결  제"_s, {182, 246}, ui::bitmaps::kPay, [this] { pay(); });
    addButtons(u"추 가"_s, u"주문전표내역을 삭제할까요?"_s, u"주문전표삭제"_s);
    setTabOrder(control(1000), unvisited_);
}

app::ListedSlips CGaraeSeek::loadSlips() {
    SlipList slips = slipsOfDay(app::session().UserID, app::session().WorkDate);
    const auto unvisited = slips.states.count(kUnvisited);
    unvisited_->setText(u"%1 %2건"_s.arg(kUnvisited).arg(unvisited));
    if (app::session().action.UnvisitedFirst) {
        slips = unvisitedFirst(slips, unvisitedOrders(app::session().UserID, app::session().WorkDate));
    }
    const int counts[] = {slips.printed + slips.unprinted, slips.printed, slips.unprinted};
    for (int i = 0; i < int(std::size(kCounts)); ++i) setText(kCounts[i], u" %1 건"_s.arg(counts[i]));
    app::ActionValues& action = app::session().action;
    action.JunNo.clear();
    action.SlipState.clear();
    return listed(slips);
}

void CGaraeSeek::takeSlip(const platform::Rows& slips, int row) {
    app::ActionValues& action = app::session().action;
    action.SlipState = slips.at(row, 0);
    action.GName = slips.at(row, 1);
    action.JunNo = slips.at(row, 2);
    // The list knows the name only; the slip's own lines say who the customer is.
    action.GCode.clear();
}

void CGaraeSeek::openUnvisited() {
    if (ui::runScreen(app::dialogs::kUnvisited) == Accepted) openSlip();
}

void CGaraeSeek::pay() {
    if (!isSlipChosen()) return;
    const app::SessionValues& session = app::session();
    const auto slip = sales::openSlip(session.UserID, session.WorkDate, session.action.JunNo);
    if (!slip) {
        ui::message(u"주문서를 열지 못했습니다..!"_s);
        return;
    }
    app::session().action.GCode = slip->GCode;
    handOver(slip->sums, books::slipCustomer(slip->GCode).value_or(books::Customer()).receivable());
    runWork(app::dialogs::kCollectionEntry);
}

void CGaraeSeek::deleteSlip() {
    const app::SessionValues& session = app::session();
    // A paid slip that was saved again is unprinted, but its card payment stands all the same.
    const bool alsoFollowers = app::mayDeletePayments(session.action.SlipState == kPaid);
    const bool isDeleted =
        sales::deleteSlip(session.WorkDate, session.action.JunNo, alsoFollowers, session.UserID);
    ui::message(!isDeleted ? u"주문전표를 삭제하지 못했습니다..!"_s
                           : u"선택된 주문전표와 입금표 / 인수증을 삭제하였습니다..!"_s);
}

}  // namespace sales
