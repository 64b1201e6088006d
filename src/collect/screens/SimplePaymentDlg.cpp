#include "collect/screens/SimplePaymentDlg.h"

#include <QLabel>

#include "app/Dialogs.h"
#include "app/KeypadRequest.h"
#include "app/Session.h"
#include "books/SlipNumbers.h"
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

    constexpr int kTop = 70;
    constexpr int kRowHeight = 34;
    const auto place = [this](int controlId, const QString& caption, int valueId, int row) {
        const int top = kTop + row * kRowHeight;
        addAmount(valueId, caption, {122, top, 112, 24}, ui::FontHeight::Medium);
        return addButton(controlId, caption, {4, top}, ui::bitmaps::kWideAmount);
    };
    for (int i = 0; i < int(std::size(kRows)); ++i) {
        const AmountRow& row = kRows[i];
        connect(place(row.button, row.caption.toString(), row.value, i), &ui::BitmapButton::clicked, this,
                [this, row] { keyAmount(row.which, row.caption.toString()); });
    }
    // The total follows from the others; its button only names it.
    place(kTotalButton, u"합계"_s, kTotalValue, int(std::size(kRows)))->setEnabled(false);

    ui::BitmapButton* cancel = addBottomButton(1000, u"취  소"_s, 0, ui::bitmaps::kCancel);
    connect(cancel, &ui::BitmapButton::clicked, this, [this] { close(Cancelled); });
    ui::BitmapButton* clear = addBottomButton(1001, u"크리어"_s, 1, ui::bitmaps::kPay);
    connect(clear, &ui::BitmapButton::clicked, this, [this] {
        amounts_ = {};
        showAmounts();
    });
    ui::BitmapButton* done = addBottomButton(1003, u"완  료"_s, 3, ui::bitmaps::kConfirm);
    connect(done, &ui::BitmapButton::clicked, this, [this] { finish(); });
    setDefaultButton(done);
    setCancelButton(cancel);
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

void CSimplePaymentDlg::finish() {
    books::resetTransactionRecord();
    books::transactionRecord().amounts = amounts_;
    ui::runScreen(app::dialogs::kCard);
    if (app::session().SlipDone == 1) close(Accepted);
}

}  // namespace collect
