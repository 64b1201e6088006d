#include "collect/screens/CollectionEntryDlg.h"

#include <QLabel>
#include <QTimer>
#include <functional>
#include <utility>

#include "app/Dialogs.h"
#include "app/KeypadRequest.h"
#include "app/PaymentQuestion.h"
#include "app/Session.h"
#include "books/Charge.h"
#include "collect/Settlement.h"
#include "ui/AmountTable.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"
#include "ui/WaitCursor.h"

namespace collect {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::groupThousands;
using platform::Won;

constexpr int kFirstRowTop = 26;
constexpr int kRowHeight = 43;

/// A column of amounts, each below its button.
ui::AmountTable column(int left, ui::ButtonBitmaps bitmaps) {
    constexpr int kWidth = 116;
    return {.left = left,
            .captionWidth = kWidth,
            .rowHeight = kRowHeight,
            .columns = {{left, kWidth - 4}},
            .bitmaps = bitmaps,
            .captionHeight = 24};
}

/// The value texts and the amounts that they show.
struct Value {
    int control;
    Won books::SettlementAmounts::*amount;
};
constexpr Value kValues[] = {
    {1099, &books::SettlementAmounts::sales},
    {1100, &books::SettlementAmounts::supply},
    {1101, &books::SettlementAmounts::vat},
    {1105, &books::SettlementAmounts::nonLiquor},
    {1102, &books::SettlementAmounts::total},
    {1103, &books::SettlementAmounts::containerRecovery},
    {1084, &books::SettlementAmounts::card},
    {1085, &books::SettlementAmounts::cash},
    {1086, &books::SettlementAmounts::unpaid},
    {1087, &books::SettlementAmounts::earlierReceivable},
    {1090, &books::SettlementAmounts::previousReceivable},
};
constexpr int kResultingReceivable = 1091;
constexpr int kState = 1110;
constexpr int kKeyButtons[] = {1092, 1093, 1094, 1104, 1096, 1013};
constexpr int kSettlingButtons[] = {1097, 1098, 1083};

void tellExcess(Won excess) {
    ui::message(u"용공초과액이 ['%1'원] 발생하였습니다. 매출금액과 결제금액을 다시 확인하세요..!!"_s.arg(
        groupThousands(excess)));
}

}  // namespace

CCollectionEntryDlg::CCollectionEntryDlg() : Screen(app::dialogs::kCollectionEntry) {
    const app::ActionValues& action = app::session().action;
    addLabel(1108, {}, {4, 0, 150, 24}, ui::FontHeight::Medium);
    setFittedText(1108, action.GName, ui::FontHeight::Medium);
    addAmount(1109, u"전표번호"_s, {156, 0, 40, 24}, ui::FontHeight::Medium);
    setText(1109, action.JunNo);
    addLabel(kState, {}, {198, 0, 40, 24}, ui::FontHeight::Small, Qt::AlignRight | Qt::AlignVCenter);

    addSaleRows();
    addPaymentRows();

    addLeaveButton(1000, u"이전"_s, [this] { goBack(); });
    addBottomButton(1002, u"전표삭제"_s, 1, ui::bitmaps::kDelete, [this] { deletePrevious(); });
    addMainButton(1003, u"완료"_s, [this] { finish(); });

    load();
    showAmounts();
}

void CCollectionEntryDlg::addSaleRows() {
    struct Row {
        int button;
        QString caption;
        int value;
        Key key;
    };
    const Key keyNonLiquorAlone = [](books::SettlementAmounts& amounts, Won keyed) {
        keyNonLiquor(amounts, keyed);
        return Won();
    };
    const Row rows[] = {
        {1092, u"주류매출액"_s, 1099, keySales}, {1093, u"공급가액"_s, 1100, keySupply},
        {1094, u"부가세액"_s, 1101, keyVat},     {1104, u"비주류금액"_s, 1105, keyNonLiquorAlone},
        {1095, u"매출합계"_s, 1102, nullptr},    {1096, u"용공회수액"_s, 1103, keyRecovery}};
    const ui::AmountTable table = column(2, ui::bitmaps::kWideAmount);
    int top = kFirstRowTop;
    for (const Row& row : rows) {
        std::function<void()> keyed;
        if (row.key != nullptr) keyed = [this, row] { keyAmount(row.caption, row.key); };
        addAmountRow(table, {row.caption, top, {row.value}, row.button, keyed});
        top += kRowHeight;
    }
}

void CCollectionEntryDlg::addPaymentRows() {
    const auto top = [](int row) { return kFirstRowTop + row * kRowHeight; };
    const ui::AmountTable settled = column(122, ui::bitmaps::kSettle);
    addAmountRow(settled, {u"카드입금"_s, top(0), {1084}, 1097, [this] { settle(settleByCard); }});
    addAmountRow(settled, {u"현금입금"_s, top(1), {1085}, 1098, [this] { settle(settleInCash); }});
    addAmountRow(settled, {u"외상처리"_s, top(2), {1086}, 1083, [this] { settle(settleOnCredit); }});
    const ui::AmountTable keyed = column(122, ui::bitmaps::kWideAmount);
    addAmountRow(keyed, {u"전미수"_s, top(3), {1087}, 1013, [this] { keyEarlierReceivable(); }});
    addAmountRow(keyed, {u"전채권잔액"_s, top(4), {1090}});
    addAmountRow(keyed, {u"총채권잔액"_s, top(5), {kResultingReceivable}});
}

void CCollectionEntryDlg::load() {
    app::SessionValues& session = app::session();
    app::ActionValues& action = session.action;
    const auto opening = entry_.open({session.WorkDate, action.JunNo, session.UserID, action.GCode},
                                     session.WorkMode == app::kSalesWork,
                                     // What the container slip handed over is used up here.
                                     {.recovery = std::exchange(action.ContainerRecovery, std::nullopt),
                                      .isRecoveryMoved = std::exchange(action.IsRecoveryMoved, false),
                                      .kept = std::exchange(action.KeptSettlement, std::nullopt)});
    action.GCode = entry_.slip().gCode;
    action.CrateDepositSum = entry_.crateDeposit();
    if (opening.excess.isZero() && !opening.asked) return;
    QTimer::singleShot(0, this, [this, opening] {
        if (!opening.excess.isZero()) tellExcess(opening.excess);
        if (opening.asked) askToTakeOver(*opening.asked);
    });
}

void CCollectionEntryDlg::askToTakeOver(Won recovery) {
    if (!ui::confirm(
            u"용공회수전표의 금액은 ['%1'원]입니다. 용공회수액을 바꿀까요?"_s.arg(groupThousands(recovery)),
            u"용공회수액"_s)) {
        return;
    }
    const Won excess = entry_.takeOver(recovery);
    if (!excess.isZero()) tellExcess(excess);
    showAmounts();
}

void CCollectionEntryDlg::showAmounts() {
    const books::SettlementAmounts& amounts = entry_.amounts();
    for (const Value& value : kValues)
        setFittedText(value.control, groupThousands(amounts.*value.amount), ui::FontHeight::Small);
    // A simple payment was charged as it stands and moves no debt: nothing of it is changed here.
    const bool isSimple = entry_.isSimplePayment();
    setFittedText(kResultingReceivable,
                  groupThousands(isSimple ? amounts.previousReceivable : resultingReceivable(amounts)),
                  ui::FontHeight::Small);
    for (const int button : kKeyButtons) control(button)->setEnabled(!isSimple);
    for (const int button : kSettlingButtons)
        control(button)->setEnabled(!isSimple && hasSomethingToSettle(amounts));
    setFittedText(kState, approvalState(), ui::FontHeight::Small);
}

QString CCollectionEntryDlg::approvalState() const {
    if (entry_.isApproved()) return u"결제"_s;
    return !entry_.isPaidOnLine() && entry_.amounts().card > Won() ? books::kNotApproved.toString()
                                                                   : QString();
}

void CCollectionEntryDlg::keyAmount(const QString& title, Key key) {
    const auto keyed = app::askAmount(title);
    if (!keyed) return;
    const Won excess = key(entry_.amounts(), *keyed);
    entry_.holdApprovedCard();
    if (!excess.isZero()) tellExcess(excess);
    showAmounts();
}

void CCollectionEntryDlg::settle(void (*rule)(books::SettlementAmounts&)) {
    if (entry_.isApproved() && rule == settleByCard) {
        ui::message(u"카드결제된 전표의 카드금액은 바꿀수 없습니다..!"_s);
        return;
    }
    rule(entry_.amounts());
    entry_.holdApprovedCard();
    showAmounts();
}

void CCollectionEntryDlg::keyEarlierReceivable() {
    const auto keyed = app::askAmount(u"전미수"_s);
    if (!keyed) return;
    collect::keyEarlierReceivable(entry_.amounts(), *keyed);
    showAmounts();
}

void CCollectionEntryDlg::deletePrevious() {
    const auto question = askAboutPayment();
    if (question.answer == books::PaymentAnswer::Open) {
        ui::message(books::refuseToDelete(*question.inTheWay));
        return;
    }
    if (question.answer == books::PaymentAnswer::Approved) return takeApproval();
    if (entry_.isApproved() ? !ui::confirm(u"카드결제된 입금표를 삭제할까요?"_s, u"카드결제된 입금표삭제"_s)
                            : !ui::confirm(u"입금전표내역을 삭제할까요?"_s, u"입금전표삭제"_s,
                                           ui::MessageIcon::Information)) {
        return;
    }
    if (!entry_.remove()) {
        ui::message(u"입금전표를 삭제하지 못했습니다..!"_s);
        return;
    }
    ui::message(u"이전입금전표내역을 삭제하였습니다.."_s);
    showAmounts();
}

books::PaymentQuestion CCollectionEntryDlg::askAboutPayment() {
    const books::SlipIdentity& slip = entry_.slip();
    return books::askAboutPayments(
        [&] { return books::unsettledPayment(slip.date, slip.junNo, slip.userId); }, app::askHost);
}

bool CCollectionEntryDlg::isPaymentSettled() {
    const books::PaymentQuestion question = askAboutPayment();
    if (question.answer == books::PaymentAnswer::Approved) takeApproval();
    if (question.answer == books::PaymentAnswer::Free) return !isApprovalPutBack();
    if (question.answer != books::PaymentAnswer::Open) return false;
    // Credit asks nobody for money twice: the visit ends, and an approval that is found turns it into the
    // card amount.
    if (entry_.amounts().card.isZero() && entry_.amounts().cash.isZero()) {
        return ui::confirm(
            u"%1의 결과를 확인하는 중입니다. 외상으로 저장하고, 승인이 확인되면 그 결제로 바꿀까요?"_s.arg(
                books::describePayment(*question.inTheWay)),
            u"카드결제 확인중"_s);
    }
    ui::message(books::refuseToPay(*question.inTheWay) + u" 지금 끝내려면 [외상처리]를 누르세요."_s);
    return false;
}

bool CCollectionEntryDlg::isApprovalPutBack() {
    const auto lost = books::approvalWithoutSlip(entry_.slip());
    if (!lost || entry_.isApproved()) return false;
    if (!ui::askYesNo(books::askToPutBack(*lost), u"승인된 결제"_s)) return false;
    const auto back = books::putApprovalBack(lost->number);
    if (!back) {
        ui::message(u"결제를 되돌리지 못했습니다..!"_s);
    } else if (back->JunNo == entry_.slip().junNo && back->UserID == entry_.slip().userId) {
        takeApproval();
    } else {
        // It has lowered the debt; this sale is settled with that, not as it was keyed.
        app::session().action.KeptSettlement.reset();
        load();
        showAmounts();
        ui::message(
            u"%1번 입금전표로 되돌려 채권에서 뺐습니다..! 이 전표는 그만큼 [외상처리]를 누르세요!!"_s.arg(
                back->JunNo));
    }
    return true;
}

void CCollectionEntryDlg::takeApproval() {
    if (!entry_.isPaidAsShown()) {
        // The slip was changed meanwhile: what it is worth more or less is unpaid, which the screen has to
        // show first.
        load();
        showAmounts();
        return;
    }
    // The visit is paid already, by what the card was charged then.
    app::session().SlipDone = 1;
    close(Accepted);
}

void CCollectionEntryDlg::finish() {
    const books::SettlementAmounts& amounts = entry_.amounts();
    if (nothingToSettle(amounts)) {
        ui::message(
            u"카드결제&현금결제&전미수입금&미결제액&용공회수액 중에서  금액이 0원 이상이여야 합니다.."_s);
        return;
    }
    if (entry_.isToSettleAgain()) {
        const bool isCard = books::chargeKind(amounts) == books::ChargeKind::Card;
        ui::message(u"%1금액이 결제할 금액 ['%2'원]과 다릅니다..! [%1입금]을 다시 누르세요!!"_s.arg(
            isCard ? u"카드"_s : u"현금"_s, groupThousands(books::amountToSettle(amounts))));
        return;
    }
    if (!isPaymentSettled()) return;
    // The card screen may come back without a payment.
    app::session().action.KeptSettlement = entry_.kept();
    // Without its row an approval would have no place, so the way to the card ends here.
    if (!save()) {
        ui::message(u"입금전표를 저장하지 못했습니다..!"_s);
        return;
    }
    books::resetTransactionRecord();
    books::transactionRecord().amounts = amounts;
    closeAndOpen(entry_.isPaidOnLine() ? app::dialogs::kCard : app::dialogs::kSlipPrinting);
}

bool CCollectionEntryDlg::save() const {
    const ui::WaitCursor wait;
    return entry_.save(app::session().action.GName);
}

void CCollectionEntryDlg::goBack() {
    app::session().action.KeptSettlement = entry_.kept();
    // A card payment that was not made, and that the host was asked about here.
    app::takeBackUnpaid();
    close(Cancelled);
}

}  // namespace collect
