#include "sales/screens/GaeaeDlg.h"

#include <QLabel>
#include <utility>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "books/Customer.h"
#include "books/SlipNumbers.h"
#include "platform/Hangul.h"
#include "sales/CustomerQuery.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/WaitCursor.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

enum Control { kName = 1107, kTel = 1108, kMargin = 1109, kReceivable = 1110 };

/// The screen that a work mode goes on to; 0 for a mode that opens nothing.
int workScreen(int workMode) {
    switch (workMode) {
        case app::kSalesWork: return app::dialogs::kSalesSlip;
        case app::kCollectionWork: return app::dialogs::kCollectionEntry;
        case app::kContainerWork: return app::dialogs::kContainerSlip;
        case app::kSimplePayment: return app::dialogs::kSimplePayment;
        default: return 0;
    }
}

}  // namespace

CGaeaeDlg::CGaeaeDlg() : NarrowScreen(app::dialogs::kCustomerList), seek_(app::session().action.SeekValue) {
    list_ = addList(
        1054, {0, 32, 240, 188}, u"거래처 목록"_s,
        {{u"코드"_s, 50}, {u"거래처명"_s, 180}, {u"거래일자"_s, 70}}, [this](int row) { choose(row); },
        [this] {
            app::session().action.JunNo.clear();
            app::session().action.SeekValue.clear();
            confirm();
        });

    list_->setDetail([this](const platform::Rows& rows, int row) {
        const QString& code = rows.at(row, 0);
        const QString& last = rows.at(row, 2);
        return ui::RowDetail{last.isEmpty() ? QString() : u"최근거래 "_s + last,
                             today_.visited.contains(code)   ? u"오늘 방문"_s
                             : today_.ordered.contains(code) ? u"오늘 주문"_s
                                                             : QString()};
    });

    describe(addLabel(kName, {}, {4, 221, 232, 20}, ui::FontHeight::Medium), u"선택한 거래처"_s);
    // Who was chosen before is taken where none is chosen here.
    if (!app::session().action.GCode.isEmpty()) showName();
    addLabel(0, u"전화"_s, {4, 242, 100, 16});
    addLabel(0, u"마진"_s, {108, 242, 40, 16}, ui::FontHeight::Small, Qt::AlignCenter);
    addLabel(0, u"채권잔액"_s, {150, 242, 86, 16}, ui::FontHeight::Small, ui::kRight);
    describe(addLabel(kTel, {}, {4, 258, 104, 24}), u"전화"_s);
    describe(addLabel(kMargin, {}, {108, 258, 40, 24}, ui::FontHeight::Small, Qt::AlignCenter), u"마진"_s);
    addAmount(kReceivable, u"채권잔액"_s, {150, 258, 86, 24});

    addLeaveButton(1003, u"취  소"_s);
    addBottomButton(1002, {}, 1, ui::bitmaps::kBlank, {});
    addBottomButton(1001, u"전  체"_s, 2, ui::bitmaps::kSearch, [this] {
        ownOnly_ = !ownOnly_;
        fill();
    });
    addMainButton(1000, u"확  인"_s, [this] { confirm(); });

    addNarrowing(list_, 2, platform::hangul::continues);
    connect(list_, &ui::ReportList::narrowed, this, &CGaeaeDlg::forgetChoice);
    fill();
    list_->setFocus();
}

void CGaeaeDlg::fill() {
    const ui::WaitCursor wait;
    today_ = customersOfDay(app::session().WorkDate);
    list_->setEmptyText(ownOnly_ ? u"찾는 거래처가 없습니다.\n[전체]를 누르면 모두 찾습니다."_s
                                 : u"찾는 거래처가 없습니다."_s);
    list_->readRows(customers(seek_, app::session().UserID, ownOnly_));
}

void CGaeaeDlg::choose(int row) {
    app::ActionValues& action = app::session().action;
    action.GCode = list_->rows().at(row, 0);
    action.GName = list_->rows().at(row, 1);
    isChosenHere_ = true;
    showName();
    const auto customer = books::listedCustomer(action.GCode);
    if (!customer) return;
    setFittedText(kTel, customer->Tel, ui::FontHeight::Small);
    setFittedText(kMargin, u" %1 "_s.arg(customer->Majin), ui::FontHeight::Small);
    setAmount(kReceivable, customer->receivable());
}

void CGaeaeDlg::showName() {
    setFittedText(kName, app::session().action.GName, ui::FontHeight::Medium);
}

void CGaeaeDlg::forgetChoice() {
    // A customer of earlier work stays chosen: no row of this list stood for it.
    if (!std::exchange(isChosenHere_, false)) return;
    app::session().action.GCode.clear();
    app::session().action.GName.clear();
    for (const int id : {kName, kTel, kMargin, kReceivable}) setText(id, {});
}

void CGaeaeDlg::confirm() {
    app::SessionValues& session = app::session();
    if (session.action.GCode.isEmpty()) {
        ui::message(u"거래처를 먼저 선택하세요!"_s);
        return;
    }
    if (session.WorkMode == app::kSalesWork &&
        books::customerHasSlip(session.WorkDate, session.action.GCode)) {
        ui::message(u"등록된 주문서가 존재합니다..!!"_s);
        return;
    }
    if (const auto number = books::nextSlipNumber(session.WorkMode, session.WorkDate)) {
        session.action.SeekValue.clear();
        session.action.JunNo = *number;
    }
    if (const int next = workScreen(session.WorkMode)) {
        closeAndOpen(next);
    } else {
        close(Accepted);
    }
}

}  // namespace sales
