#include "collect/screens/CollectionEntryDlg.h"

#include <QLabel>
#include <QTimer>
#include <functional>
#include <optional>
#include <utility>

#include "app/Dialogs.h"
#include "app/KeypadRequest.h"
#include "app/Session.h"
#include "books/Charge.h"
#include "books/ContainerBalance.h"
#include "books/OpenPayments.h"
#include "collect/Settlement.h"
#include "ui/AmountTable.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"
#include "ui/WaitCursor.h"

namespace collect {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::parseWon;
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

QString grouped(Won amount) {
    return platform::groupDigits(platform::formatWon(amount));
}

void tellExcess(Won excess) {
    ui::message(u"용공초과액이 ['%1'원] 발생하였습니다. 매출금액과 결제금액을 다시 확인하세요..!!"_s.arg(
        grouped(excess)));
}

}  // namespace

CCollectionEntryDlg::CCollectionEntryDlg() : Screen(app::dialogs::kCollectionEntry) {
    const app::ActionValues& action = app::session().action;
    addLabel(1108, {}, {4, 0, 150, 24}, ui::FontHeight::Medium);
    setFittedText(1108, action.GName, ui::FontHeight::Medium);
    addAmount(1109, u"전표번호"_s, {156, 0, 40, 24}, ui::FontHeight::Medium);
    setText(1109, action.JunNo);
    addLabel(1110, {}, {198, 0, 40, 24}, ui::FontHeight::Small, Qt::AlignRight | Qt::AlignVCenter);

    addSaleRows();
    addPaymentRows();

    addLeaveButton(1000, u"이전"_s);
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
    auto saved = books::loadCollection(session.WorkDate, session.action.JunNo, session.UserID);
    // A number is given again once its slip is deleted, but the collection may have stayed.
    isOthers_ = saved && !session.action.GCode.isEmpty() && saved->GCode != session.action.GCode;
    if (isOthers_) saved.reset();
    isApproved_ = saved && saved->isApproved();
    if (session.WorkMode != app::kSalesWork) session.action.CrateDepositSum = saved ? saved->YMoney : Won();
    if (saved) {
        amounts_ = saved->amounts();
        // The collection list knows the customer's name only.
        session.action.GCode = saved->GCode;
    }
    if (session.WorkMode == app::kSalesWork) {
        // The goods as they are payable, so that the total is the slip's own, rounded as the salesman's VAT
        // mode says.
        amounts_.sales = session.action.CheckoutTotal - session.action.CheckoutDeposits;
        amounts_.supply = session.action.CheckoutSupply;
        amounts_.vat = session.action.CheckoutVat;
        amounts_.deposit = session.action.CheckoutDeposits;
    }
    recomputeTotal(amounts_);
    Won excess;
    if (saved && !saved->isSimplePayment() && saved->amounts().total != amounts_.total)
        excess = settleNewTotal(amounts_, saved->amounts().total);
    if (saved && isApproved_) {
        approvedCard_ = amounts_.card;
        setText(1110, u"결제"_s);
    }
    amounts_.previousReceivable = books::previousReceivable(session.action.GCode, session.WorkDate,
                                                            session.action.JunNo, session.UserID);
    takeOverContainers(saved, excess);
}

void CCollectionEntryDlg::takeOverContainers(const std::optional<books::CollectionSlip>& saved, Won excess) {
    app::SessionValues& session = app::session();
    // What the container slip handed over is used up here. Where the way here passes the containers by, their
    // slip says what it is worth.
    auto recovery = std::exchange(session.action.ContainerRecovery, std::nullopt);
    const bool isHandedOver = recovery.has_value();
    if (!isHandedOver && !(saved && saved->isSimplePayment())) {
        recovery = books::savedRecovery(session.WorkDate, session.action.JunNo, session.UserID,
                                        session.action.GCode);
    }
    if (recovery == amounts_.containerRecovery) recovery.reset();
    // Another amount on the saved collection may have been keyed.
    const bool isAsked = recovery && !isHandedOver && saved;
    if (recovery && !isAsked) excess = takeOver(*recovery);
    holdApprovedCard();
    if (excess.isZero() && !isAsked) return;
    QTimer::singleShot(0, this, [this, excess, recovery, isAsked] {
        if (!excess.isZero()) tellExcess(excess);
        if (isAsked) askToTakeOver(*recovery);
    });
}

Won CCollectionEntryDlg::takeOver(Won recovery) {
    return takeOverRecovery(amounts_, recovery, app::session().WorkMode != app::kSalesWork);
}

void CCollectionEntryDlg::askToTakeOver(Won recovery) {
    if (!ui::confirm(u"용공회수전표의 금액은 ['%1'원]입니다. 용공회수액을 바꿀까요?"_s.arg(grouped(recovery)),
                     u"용공회수액"_s)) {
        return;
    }
    const Won excess = takeOver(recovery);
    holdApprovedCard();
    if (!excess.isZero()) tellExcess(excess);
    showAmounts();
}

void CCollectionEntryDlg::showAmounts() {
    for (const Value& value : kValues)
        setFittedText(value.control, grouped(amounts_.*value.amount), ui::FontHeight::Small);
    setFittedText(kResultingReceivable, grouped(resultingReceivable(amounts_)), ui::FontHeight::Small);
}

void CCollectionEntryDlg::keyAmount(const QString& title, Key key) {
    if (!app::askNumber(title)) return;
    const Won excess = key(amounts_, parseWon(app::keypadRequest().KeypadValue1));
    holdApprovedCard();
    if (!excess.isZero()) tellExcess(excess);
    showAmounts();
}

void CCollectionEntryDlg::holdApprovedCard() {
    if (approvedCard_) holdCard(amounts_, *approvedCard_);
}

void CCollectionEntryDlg::settle(void (*rule)(books::SettlementAmounts&)) {
    if (approvedCard_ && rule == settleByCard) {
        ui::message(u"카드결제된 전표의 카드금액은 바꿀수 없습니다..!"_s);
        return;
    }
    rule(amounts_);
    holdApprovedCard();
    showAmounts();
}

void CCollectionEntryDlg::keyEarlierReceivable() {
    if (!app::askNumber(u"전미수"_s)) return;
    collect::keyEarlierReceivable(amounts_, parseWon(app::keypadRequest().KeypadValue1));
    showAmounts();
}

void CCollectionEntryDlg::deletePrevious() {
    const app::SessionValues& session = app::session();
    const auto question = askAboutPayment();
    if (question.answer == app::PaymentAnswer::Open) {
        ui::message(books::refuseToDelete(*question.inTheWay));
        return;
    }
    if (question.answer == app::PaymentAnswer::Approved) return takeApproval();
    if (isApproved_ && !ui::confirm(u"카드결제된 입금표를 삭제할까요?"_s, u"카드결제된 입금표삭제"_s)) return;
    // Another customer's collection is not this one's to delete.
    if (!isOthers_ && !books::removeCollection(session.WorkDate, session.action.JunNo, session.UserID)) {
        ui::message(u"입금전표를 삭제하지 못했습니다..!"_s);
        return;
    }
    ui::message(u"이전입금전표내역을 삭제하였습니다.."_s);
    isApproved_ = false;
    approvedCard_.reset();
    setText(1110, {});
    amounts_.previousReceivable = books::previousReceivable(session.action.GCode, session.WorkDate,
                                                            session.action.JunNo, session.UserID);
    showAmounts();
}

app::PaymentQuestion CCollectionEntryDlg::askAboutPayment() {
    return app::askAboutPayments([] {
        const app::SessionValues& session = app::session();
        return books::unsettledPayment(session.WorkDate, session.action.JunNo, session.UserID);
    });
}

bool CCollectionEntryDlg::isPaymentSettled() {
    const app::PaymentQuestion question = askAboutPayment();
    if (question.answer == app::PaymentAnswer::Approved) takeApproval();
    if (question.answer == app::PaymentAnswer::Free) return !isApprovalPutBack();
    if (question.answer != app::PaymentAnswer::Open) return false;
    // Credit asks nobody for money twice: the visit ends, and an approval that is found turns it into the
    // card amount.
    if (amounts_.card.isZero() && amounts_.cash.isZero()) {
        return ui::confirm(
            u"%1의 결과를 확인하는 중입니다. 외상으로 저장하고, 승인이 확인되면 그 결제로 바꿀까요?"_s.arg(
                books::describePayment(*question.inTheWay)),
            u"카드결제 확인중"_s);
    }
    ui::message(books::refuseToPay(*question.inTheWay) + u" 지금 끝내려면 [외상처리]를 누르세요."_s);
    return false;
}

bool CCollectionEntryDlg::isApprovalPutBack() {
    const app::SessionValues& session = app::session();
    const auto lost = books::approvalWithoutSlip(
        {session.WorkDate, session.action.JunNo, session.UserID, session.action.GCode});
    if (!lost || isApproved_) return false;
    const QString question =
        u"이미 승인된 결제가 있습니다..! %1 거래번호 : %2  이 결제를 전표에 되돌릴까요?"_s.arg(
            books::describePayment(*lost), lost->slip.BANKTRANNO);
    if (!ui::askYesNo(question, u"승인된 결제"_s)) return false;
    if (books::putApprovalBack(lost->number)) {
        takeApproval();
    } else {
        ui::message(u"결제를 되돌리지 못했습니다..!"_s);
    }
    return true;
}

void CCollectionEntryDlg::takeApproval() {
    app::SessionValues& session = app::session();
    const auto paid = books::loadCollection(session.WorkDate, session.action.JunNo, session.UserID);
    if (!paid || paid->amounts().total != amounts_.total || paid->YDMoney != amounts_.containerRecovery) {
        // The slip was changed meanwhile: what it is worth more is unpaid, which the screen has to show
        // first.
        load();
        showAmounts();
        return;
    }
    // The visit is paid already, by what the card was charged then.
    session.SlipDone = 1;
    close(Accepted);
}

void CCollectionEntryDlg::finish() {
    if (nothingToSettle(amounts_)) {
        ui::message(
            u"카드결제&현금결제&전미수입금&미결제액&용공회수액 중에서  금액이 0원 이상이여야 합니다.."_s);
        return;
    }
    const app::SessionValues& session = app::session();
    const bool isPaidOnLine =
        session.WorkMode != app::kCollectionWork && session.WorkMode != app::kContainerWork && !isApproved_;
    if (isPaidOnLine && !books::isChargeOneAmount(amounts_)) {
        const bool isCard = books::chargeKind(amounts_) == books::ChargeKind::Card;
        ui::message(u"%1금액이 결제할 금액 ['%2'원]과 다릅니다..! [%1입금]을 다시 누르세요!!"_s.arg(
            isCard ? u"카드"_s : u"현금"_s, grouped(books::amountToSettle(amounts_))));
        return;
    }
    if (!isPaymentSettled()) return;
    books::CollectionSlip slip;
    slip.DDate = session.WorkDate;
    slip.GCode = session.action.GCode;
    slip.GName = session.action.GName;
    slip.JunNo = session.action.JunNo;
    slip.UserID = session.UserID;
    slip.setAmounts(amounts_, session.action.CrateDepositSum);
    bool isSaved = false;
    {
        const ui::WaitCursor wait;
        isSaved = books::saveCollection(slip, &books::replacedCollection());
    }
    // Without its row an approval would have no place, so the way to the card ends here.
    if (!isSaved) {
        ui::message(u"입금전표를 저장하지 못했습니다..!"_s);
        return;
    }
    books::resetTransactionRecord();
    books::transactionRecord().amounts = amounts_;
    closeAndOpen(isPaidOnLine ? app::dialogs::kCard : app::dialogs::kSlipPrinting);
}

}  // namespace collect
