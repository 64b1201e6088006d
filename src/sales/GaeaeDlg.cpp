#include "sales/GaeaeDlg.h"

#include <QLabel>

#include "app/Dialogs.h"
#include "app/Session.h"
#include "sales/CustomerQuery.h"
#include "sales/SlipNumber.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/WaitCursor.h"

namespace sales {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kList = 1054;
constexpr int kTel = 1108;
constexpr int kMargin = 1109;
constexpr int kReceivable = 1110;

/// The screen that a work mode goes on to; 0 for a mode that opens nothing.
int workScreen(int workMode) {
    switch (workMode) {
        case app::kSalesWork:
            return app::dialogs::kSalesSlip;
        case app::kCollectionWork:
            return app::dialogs::kCollectionEntry;
        case app::kContainerWork:
            return app::dialogs::kContainerSlip;
        case app::kSimplePayment:
            return app::dialogs::kSimplePayment;
        default:
            return 0;
    }
}

}  // namespace

CGaeaeDlg::CGaeaeDlg() : Screen(app::dialogs::kCustomerList), seek_(app::session().action.SeekValue) {
    ui::ReportList* list = addList(kList, {0, 0, 240, 236});
    const ui::ListColumn columns[] = {{u"코드"_s, 50}, {u"거래처명"_s, 180}, {u"거래일자"_s, 70}};
    list->setColumns(columns);
    connect(list, &ui::ReportList::rowClicked, this, &CGaeaeDlg::choose);
    connect(list, &ui::ReportList::rowDoubleClicked, this, [this](int row) {
        choose(row);
        app::session().action.JunNo.clear();
        app::session().action.SeekValue.clear();
        confirm();
    });

    addLabel(0, u"전화"_s, {4, 238, 100, 16});
    addLabel(0, u"마진"_s, {108, 238, 40, 16}, ui::FontHeight::Small, Qt::AlignCenter);
    addLabel(0, u"채권잔액"_s, {150, 238, 86, 16}, ui::FontHeight::Small, Qt::AlignRight | Qt::AlignVCenter);
    addLabel(kTel, {}, {4, 254, 104, 24});
    addLabel(kMargin, {}, {108, 254, 40, 24}, ui::FontHeight::Small, Qt::AlignCenter);
    addLabel(kReceivable, {}, {150, 254, 86, 24}, ui::FontHeight::Small, Qt::AlignRight | Qt::AlignVCenter);

    ui::BitmapButton* cancel = addButton(1003, u"취  소"_s, {2, 282}, ui::bitmaps::kCancel);
    connect(cancel, &ui::BitmapButton::clicked, this, [this] { close(Cancelled); });
    addButton(1002, {}, {62, 282}, ui::bitmaps::kBlank)->setEnabled(false);
    ui::BitmapButton* all = addButton(1001, u"전  체"_s, {122, 282}, ui::bitmaps::kSearch);
    connect(all, &ui::BitmapButton::clicked, this, [this] {
        ownOnly_ = !ownOnly_;
        fill();
    });
    ui::BitmapButton* confirmButton = addButton(1000, u"확  인"_s, {182, 282}, ui::bitmaps::kConfirm);
    connect(confirmButton, &ui::BitmapButton::clicked, this, [this] { confirm(); });
    setDefaultButton(confirmButton);
    setCancelButton(cancel);

    fill();
    list->setFocus();
}

void CGaeaeDlg::fill() {
    const ui::WaitCursor wait;
    auto* list = static_cast<ui::ReportList*>(control(kList));
    list->clear();
    list->setRows(customers(seek_, app::session().UserID, ownOnly_));
}

void CGaeaeDlg::choose(int row) {
    const auto* list = static_cast<ui::ReportList*>(control(kList));
    app::ActionValues& action = app::session().action;
    action.GCode = list->text(row, 0);
    action.GName = list->text(row, 1);
    const std::optional<CustomerFooter> footer = customerFooter(action.GCode);
    if (!footer) return;
    setFittedText(kTel, footer->tel, ui::FontHeight::Small);
    setFittedText(kMargin, u" %1 "_s.arg(footer->Majin), ui::FontHeight::Small);
    setAmount(kReceivable, footer->CJMoney);
}

void CGaeaeDlg::confirm() {
    app::SessionValues& session = app::session();
    if (session.action.GCode.isEmpty()) {
        ui::message(u"거래처를 먼저 선택하세요!"_s);
        return;
    }
    if (session.WorkMode == app::kSalesWork && customerHasSlip(session.WorkDate, session.action.GCode)) {
        ui::message(u"등록된 주문서가 존재합니다..!!"_s);
        return;
    }
    if (const auto number = nextSlipNumber(session.WorkMode, session.WorkDate)) {
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
