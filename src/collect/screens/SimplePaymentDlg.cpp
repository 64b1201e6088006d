#include "collect/screens/SimplePaymentDlg.h"

#include <QLabel>

#include "app/Dialogs.h"
#include "app/KeypadRequest.h"
#include "app/Session.h"
#include "books/OpenPayments.h"
#include "books/SlipNumbers.h"
#include "ui/AmountTable.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"

namespace collect {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::formatWon;
using platform::groupThousands;
using platform::Won;

struct AmountRow {
    int button;
    QStringView caption;
    int value;
    SimpleAmount which;
};
constexpr AmountRow kRows[] = {
    {1125, u"주류매출액", 1131, SimpleAmount::Sales},    {1126, u"공급가액", 1100, SimpleAmount::Supply},
    {1127, u"부가세액", 1101, SimpleAmount::Vat},        {1128, u"비주류금액", 1102, SimpleAmount::NonLiquor},
    {1129, u"용공회수액", 1103, SimpleAmount::Recovery},
};
constexpr int kTotalButton = 1130;
constexpr int kTotalValue = 1104;

}  // namespace

CSimplePaymentDlg::CSimplePaymentDlg() : Screen(app::dialogs::kSimplePayment) {
    app::ActionValues& action = app::session().action;
    // A double tap on the customer empties the number that the menu gave.
    if (action.JunNo.isEmpty()) action.JunNo = books::nextSimplePaymentNumber(app::session().WorkDate);
    addLabel(0, u"단순결제"_s, {4, 4, 232, 26}, ui::FontHeight::Title, Qt::AlignCenter);
    addLabel(1059, {}, {6, 36, 170, 24}, ui::FontHeight::Medium);
    setFittedText(1059, action.GName, ui::FontHeight::Medium);
    addAmount(1088, u"전표번호"_s, {180, 36, 54, 24}, ui::FontHeight::Medium);
    setText(1088, action.JunNo);

    const ui::AmountTable table{.left = 4,
                                .captionWidth = 0,
                                .rowHeight = 24,
                                .columns = {{122, 112}},
                                .bitmaps = ui::bitmaps::kWideAmount,
                                .font = ui::FontHeight::Medium};
    int top = 70;
    for (const AmountRow& row : kRows) {
        const QString caption = row.caption.toString();
        addAmountRow(table,
                     {caption, top, {row.value}, row.button, [=, this] { keyAmount(row.which, caption); }});
        top += 34;
    }
    // The total follows from the others; its button only names it.
    addAmountRow(table, {u"합계"_s, top, {kTotalValue}, kTotalButton});

    addLeaveButton(1000, u"취  소"_s);
    addBottomButton(1001, u"크리어"_s, 1, ui::bitmaps::kPay, [this] {
        amounts_ = {};
        showAmounts();
    });
    addMainButton(1003, u"완  료"_s, [this] { finish(); });
    showAmounts();
}

void CSimplePaymentDlg::showAmounts() {
    for (const AmountRow& row : kRows) {
        setFittedText(row.value, groupThousands(value(amounts_, row.which)), ui::FontHeight::Medium);
    }
    setFittedText(kTotalValue, groupThousands(amounts_.total), ui::FontHeight::Medium);
}

void CSimplePaymentDlg::keyAmount(SimpleAmount which, const QString& title) {
    const auto keyed = app::askAmount(title, formatWon(value(amounts_, which)));
    if (!keyed) return;
    const Won excess = keySimpleAmount(amounts_, which, *keyed);
    if (!excess.isZero()) {
        ui::message(u"용공초과액이 ['%1'원] 발생하였습니다. 확인하세요!!"_s.arg(groupThousands(excess)));
    }
    showAmounts();
}

bool CSimplePaymentDlg::isApprovalPutBack() {
    app::SessionValues& session = app::session();
    const auto deleted =
        books::deletedPayment({session.WorkDate, session.action.JunNo, session.UserID, session.action.GCode});
    if (!deleted || !ui::askYesNo(books::askToPutBack(*deleted), u"승인된 결제"_s)) return false;
    if (books::putApprovalBack(deleted->number)) {
        session.SlipDone = 1;
        close(Accepted);
    } else {
        ui::message(u"결제를 되돌리지 못했습니다..!"_s);
    }
    return true;
}

void CSimplePaymentDlg::finish() {
    if (isApprovalPutBack()) return;
    books::resetTransactionRecord();
    books::transactionRecord().amounts = amounts_;
    ui::runScreen(app::dialogs::kCard);
    if (app::session().SlipDone == 1) close(Accepted);
}

}  // namespace collect
