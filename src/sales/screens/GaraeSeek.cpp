#include "sales/screens/GaraeSeek.h"

#include <QLabel>

#include "app/ApprovedPayments.h"
#include "app/Dialogs.h"
#include "app/Session.h"
#include "books/Customer.h"
#include "sales/SlipLine.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"
#include "sales/screens/HandOver.h"
#include "ui/Messages.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

/// How many slips there are, and how many of them printed and not.
constexpr int kCounts[] = {1056, 1057, 1058};
constexpr QStringView kCountNames[] = {u"전체", u"발행", u"미발행"};

}  // namespace

CGaraeSeek::CGaraeSeek() : SlipListScreen(app::dialogs::kSlipList, app::dialogs::kSalesSlip) {
    addSlips({0, 0, 240, 242}, u"주문전표 목록"_s, {{u"구분"_s, 60}, {u"거래처명"_s, 180}, {u"전표"_s, 50}});
    for (int i = 0; i < int(std::size(kCounts)); ++i) {
        const QString name = kCountNames[i].toString();
        addLabel(0, name, {2 + i * 60, 244, 56, 16}, ui::FontHeight::Small, Qt::AlignCenter);
        describe(addLabel(kCounts[i], {}, {2 + i * 60, 260, 56, 20}, ui::FontHeight::Small, Qt::AlignCenter),
                 name);
    }
    addButton(1004, u"결  제"_s, {182, 246}, ui::bitmaps::kPay, [this] { pay(); });
    addButtons(u"추 가"_s, u"주문전표내역을 삭제할까요?"_s, u"주문전표삭제"_s);
}

platform::Rows CGaraeSeek::loadSlips() {
    const SlipList slips = slipsOfDay(app::session().UserID, app::session().WorkDate);
    const int counts[] = {slips.printed + slips.unprinted, slips.printed, slips.unprinted};
    for (int i = 0; i < int(std::size(kCounts)); ++i) setText(kCounts[i], u" %1 건"_s.arg(counts[i]));
    app::ActionValues& action = app::session().action;
    action.JunNo.clear();
    action.SlipState.clear();
    return slips.slips;
}

void CGaraeSeek::takeSlip(const platform::Rows& slips, int row) {
    app::ActionValues& action = app::session().action;
    action.SlipState = slips.at(row, 0);
    action.GName = slips.at(row, 1);
    action.JunNo = slips.at(row, 2);
    // The list knows the name only; the slip's own lines say who the customer is.
    action.GCode.clear();
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
