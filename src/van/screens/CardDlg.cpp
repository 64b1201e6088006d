#include "van/screens/CardDlg.h"

#include <QLabel>
#include <QPlainTextEdit>

#include "app/Dialogs.h"
#include "app/KeypadRequest.h"
#include "app/PaymentQuestion.h"
#include "app/Session.h"
#include "books/Charge.h"
#include "books/CollectionSlip.h"
#include "books/OpenPayments.h"
#include "db/Health.h"
#include "platform/CardNumber.h"
#include "platform/Clock.h"
#include "platform/Trace.h"
#include "platform/Wipe.h"
#include "platform/termdev/CardReader.h"
#include "print/PrintJob.h"
#include "print/Printer.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/Sounds.h"
#include "ui/Terminal.h"
#include "ui/WaitCursor.h"
#include "van/CardReaderPort.h"
#include "van/PaymentInquiry.h"

namespace van {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::formatWon;
using platform::groupDigits;
using platform::parseWon;
using platform::Won;

constexpr QStringView kApproved = u"0000";
constexpr QStringView kHostDisturbed = u"0098";
constexpr qsizetype kPasswordLength = 4;
constexpr int kAskAgain = 1018;
}  // namespace

CCardDlg::CCardDlg() : Screen(app::dialogs::kCard), component_(this) {
    addControls();
    log_->set(u"카드를 읽어주세요!"_s);
    const int mode = app::session().WorkMode;
    if (mode == app::kBalanceInquiry || mode == app::kPreviousTransaction) books::resetTransactionRecord();
    const app::SessionValues& session = app::session();
    books::transactionRecord().slip = {session.WorkDate, session.action.JunNo, session.UserID,
                                       session.action.GCode};
    if (mode != app::kBalanceInquiry) loadCustomer();
    preparePayment();
    offerQuestion();

    print::DeviceOpen();
    ReaderEnable(true);
    wipeCard();
    platform::termdev::CardReader::instance().setReceiver([this](int message) {
        if (message == platform::termdev::kCardSwiped) cardSwiped();
    });
    if (mode == app::kPreviousTransaction) {
        picture_->hide();
        log_->set(u"직전거래 전문송신중!"_s);
        send(RequestKind::PreviousTransaction, books::RequestType::PreviousTransaction);
    }
}

CCardDlg::~CCardDlg() {
    platform::termdev::CardReader::instance().setReceiver({});
    ReaderEnable(false);
    print::DeviceClose();
    wipeCard();
}

void CCardDlg::wipeCard() {
    books::TransactionRecord& record = books::transactionRecord();
    record.track2.clear();
    record.track3.clear();
    record.password.clear();
}

void CCardDlg::addControls() {
    const int mode = app::session().WorkMode;
    results_ = addList(1054, {0, 2, 240, 78}, u"잔액조회 결과"_s,
                       {{u"명  칭"_s, 90}, {u"금  액"_s, 135, Qt::AlignRight | Qt::AlignVCenter}});
    results_->setVisible(mode == app::kBalanceInquiry);

    picture_ = addPicture(1143, ui::bitmaps::kAskForCard, {20, 84});
    describe(picture_, u"카드를 읽어주세요!"_s);
    log_.emplace(component_, place(1142, new QPlainTextEdit(this), {2, 208, 236, 74}), [this] {
        books::TransactionRecord& record = books::transactionRecord();
        return readReply(component_, record.requestType, &record.reply);
    });
    connect(&*log_, &ExchangeLog::ended, this, [this] { exchangeEnded(); });

    for (const auto& [id, caption] : {std::pair{1010, u"잔액조회"_s},
                                      {1015, u"계좌이체"_s},
                                      {1011, u"명세서출력"_s},
                                      {1012, u"주판출력"_s},
                                      {1016, u"패스입력"_s},
                                      {1017, u"직전거래"_s}}) {
        addButton(id, caption, {2, 84}, ui::bitmaps::kPassword, {})->hide();
    }
    addApprovalControls();
    addLeaveButton(1000, u"이전"_s, [this] { goBack(); });
    askAgain_ = addBottomButton(kAskAgain, u"결과확인"_s, 1, ui::bitmaps::kPay, [this] { askAgain(); });
    askAgain_->hide();
    addMainButton(1003, u"완료"_s, [this] { finish(); });
}

void CCardDlg::loadCustomer() {
    books::TransactionRecord& record = books::transactionRecord();
    record.customer = books::cardCustomer(record.slip.gCode);
}

void CCardDlg::preparePayment() {
    const int mode = app::session().WorkMode;
    if (mode == app::kBalanceInquiry || mode == app::kPreviousTransaction) return;
    books::TransactionRecord& record = books::transactionRecord();
    // A simple payment has no other way to be settled.
    if (mode == app::kSimplePayment) record.amounts.card = books::amountToSettle(record.amounts);
    if (record.amounts.card < Won(1)) record.cardPaymentFlag = 0;
    const books::ChargeKind kind = books::chargeKind(record.amounts);
    record.paymentKind = kind == books::ChargeKind::Card   ? u"1"_s
                         : kind == books::ChargeKind::Cash ? u"2"_s
                                                           : QString();
    record.amountToCharge = books::amountToCharge(record.amounts);
    const app::ActionValues& action = app::session().action;
    fitText(addLabel(0, {}, {8, 6, 224, 26}), action.GName, ui::FontHeight::Medium);
    addLabel(0, u"결제금액"_s, {8, 40, 80, 30}, ui::FontHeight::Medium);
    fitText(addLabel(0, {}, {90, 40, 142, 30}, ui::FontHeight::Title, Qt::AlignRight | Qt::AlignVCenter),
            groupDigits(formatWon(record.amountToCharge)) + u"원"_s, ui::FontHeight::Title);
}

void CCardDlg::cardSwiped() {
    // One exchange at a time, and none after an approval: nothing is charged twice.
    if (log_->isExchanging() || isApproved_ || app::session().WorkMode == app::kPreviousTransaction) return;
    books::TransactionRecord& record = books::transactionRecord();
    ReaderTrack(2, &record.track2);
    ReaderTrack(3, &record.track3);
    log_->set(u"주류CARD를 읽었습니다.!"_s);
    ui::play(ui::Sound::Swipe);
    // A second card while the keypad is open replaces the first, and what was keyed is not its password.
    if (isBusyWithCard_) {
        if (app::keypadRequest().StartAnew) app::keypadRequest().StartAnew();
        return;
    }
    isBusyWithCard_ = true;
    const bool isFree = app::session().WorkMode == app::kBalanceInquiry || isPaymentFree();
    const bool isEntered = isFree && app::askText(u"패스워드"_s);
    // A refusal that is on the screen swallows no card.
    isBusyWithCard_ = false;
    offerQuestion();
    if (isFree) takePassword(isEntered);
}

bool CCardDlg::isPaymentFree() {
    const auto question = books::askBeforePaying(journalPayment({}), app::askHost);
    if (question.answer == books::PaymentAnswer::Open) ui::message(books::refuseToPay(*question.inTheWay));
    isApproved_ |= question.isPaid;
    if (isApproved_) {
        showApproval(question.inTheWay->charged);
        ReaderEnable(false);
    }
    // After an approval that nobody expected the salesman decides anew, with another swipe.
    return question.answer == books::PaymentAnswer::Free;
}

bool CCardDlg::isThisSlipOpen() const {
    const books::SlipIdentity& slip = books::transactionRecord().slip;
    return books::hasUnsettledPayment(slip.date, slip.junNo, slip.userId);
}

void CCardDlg::askAgain() {
    if (log_->isExchanging() || isBusyWithCard_ || isApproved_) return;
    isBusyWithCard_ = true;
    isPaymentFree();
    isBusyWithCard_ = false;
    offerQuestion();
}

void CCardDlg::offerQuestion() {
    const int mode = app::session().WorkMode;
    const bool isPayment = mode != app::kBalanceInquiry && mode != app::kPreviousTransaction;
    askAgain_->setVisible(isPayment && isThisSlipOpen());
}

void CCardDlg::takePassword(bool isEntered) {
    books::TransactionRecord& record = books::transactionRecord();
    const qsizetype length = app::keypadRequest().KeypadValue1.size();
    if (isEntered && length == kPasswordLength)
        record.password.assign(QStringView(app::keypadRequest().KeypadValue1));
    platform::wipe(&app::keypadRequest().KeypadValue1);
    if (!isEntered) {
        ui::message(u"암호입력 취소.. 다시 시작하세요!!"_s);
    } else if (length != kPasswordLength) {
        ui::message(u"암호의 길이가 이상합니다.. 다시 시작하세요!!"_s);
    } else {
        picture_->hide();
        if (app::session().WorkMode == app::kBalanceInquiry) {
            results_->clear();
            send(RequestKind::Balance, books::RequestType::BalanceInquiry);
        } else {
            requestPayment();
        }
    }
}

void CCardDlg::requestPayment() {
    const books::TransactionRecord& record = books::transactionRecord();
    switch (books::chargeKind(record.amounts, record.cardPaymentFlag)) {
        case books::ChargeKind::Card: return send(RequestKind::CardPayment, books::RequestType::Payment);
        case books::ChargeKind::Cash: return send(RequestKind::CashPayment, books::RequestType::Payment);
        case books::ChargeKind::Nothing: ui::message(u"카드금액과 현금금액이 0이면 결제가 안됩니다..!"_s);
    }
}

void CCardDlg::send(RequestKind kind, books::RequestType type) {
    books::TransactionRecord& record = books::transactionRecord();
    record.requestType = type;
    record.reply = {};
    sentTime_ = platform::clock::now().toString(u"yyyyMMddHHmmss"_s);
    log_->begin();
    // The failures show with the next event's rewrite of the status box.
    paymentNumber_.clear();
    maskedCard_ = platform::maskedCardNumber(record.track2.view());
    bool isNoted = true;
    log_->appendUnseen(sendRequest(component_, kind, record, [&](const QString& number) {
        paymentNumber_ = number;
        return isNoted = books::notePayment(journalPayment(number));
    }));
    if (isNoted) return;
    paymentNumber_.clear();
    log_->abandon();
    picture_->show();
    ui::message(db::needsUpgrade() ? db::kUpgradeAdvice.toString()
                                   : u"결제기록을 저장하지 못해 결제를 보내지 않았습니다..!"_s);
}

books::JournalPayment CCardDlg::journalPayment(const QString& number) const {
    const books::TransactionRecord& record = books::transactionRecord();
    books::JournalPayment payment =
        books::paymentToSend(record.slip, app::session().action.GName, record.amounts, record.cardPaymentFlag,
                             isVisit(), sentTime_);
    payment.number = number;
    return payment;
}

void CCardDlg::settleUnapproved() {
    if (paymentNumber_.isEmpty()) return;
    // A host that could not keep its decision may have it on disk all the same.
    const QString& code = books::transactionRecord().reply.responseCode;
    const bool isAnswered = !code.isEmpty() && code != kHostDisturbed;
    const bool hasSent = component_.component().hasSent();
    books::settlePayment(paymentNumber_, isAnswered ? books::PaymentState::Refused
                                         : hasSent  ? books::PaymentState::Unknown
                                                    : books::PaymentState::Released);
}

void CCardDlg::exchangeEnded() {
    books::TransactionRecord& record = books::transactionRecord();
    const bool isGood = record.reply.responseCode == kApproved;
    ui::play(isGood ? ui::Sound::Approved : ui::Sound::Refused);
    switch (record.requestType) {
        case books::RequestType::Payment:
            if (isGood) {
                paymentApproved();
            } else {
                settleUnapproved();
                offerQuestion();
                ui::message(u"한번더 카드리딩후 암호를 입력해주세여 ^^!"_s);
                picture_->show();
            }
            break;
        case books::RequestType::BalanceInquiry:
            if (isGood) showBalance();
            break;
        case books::RequestType::PreviousTransaction:
            if (isGood) reprintPrevious();
            break;
        case books::RequestType::None: break;
    }
    repaint();
}

bool CCardDlg::recordApproval() {
    // Without a number the slip would not count as paid; the payment then stays unsettled.
    return books::approvePayment(paymentNumber_, books::transactionRecord().reply.transactionNumber)
        .has_value();
}

books::CollectionSlip CCardDlg::simplePayment() const {
    const books::TransactionRecord& record = books::transactionRecord();
    auto slip = books::simplePaymentSlip(record.slip, app::session().action.GName, record.amounts, sentTime_);
    slip.BANKTRANNO = record.reply.transactionNumber;
    return slip;
}

void CCardDlg::paymentApproved() {
    isApproved_ = true;
    ReaderEnable(false);
    wipeCard();
    // Looked up before the approval makes the slip "결제", which would pass for printed.
    const books::TransactionRecord& record = books::transactionRecord();
    const books::SlipIdentity& slip = record.slip;
    if (isVisit()) papers_.emplace(slip.date, slip.junNo, slip.userId);
    // The approval is on disk before the slip prints.
    if (!recordApproval()) {
        const QString& number = record.reply.transactionNumber;
        platform::trace(u"the approval %1 could not be saved"_s.arg(number));
        ui::message(u"승인되었으나 전표에 저장하지 못했습니다..! 거래번호 : %1"_s.arg(number));
        // The next question about the payment puts it on its slip and offers the print.
        papers_.reset();
    }
    const Won told = parseWon(record.reply.transactionAmount);
    showApproval(told.isZero() ? books::amountToCharge(record.amounts, record.cardPaymentFlag) : told);
    if (isVisit() && !papers_) return;
    tellOtherAmount();
    if (papers_) {
        printCopies(*papers_);
    } else {
        // The card was charged: who pays has a receipt also where the payment could not be saved.
        const auto saved = cardReceipt();
        print::printDocument(saved ? *saved : print::cardReceipt(simplePayment(), exchange(), false),
                             ui::WaitCursor::alive);
    }
}

void CCardDlg::tellOtherAmount() const {
    const books::TransactionRecord& record = books::transactionRecord();
    const Won charged = books::amountToCharge(record.amounts, record.cardPaymentFlag);
    const QString differing = tellApprovedAmount(record.reply, charged);
    if (differing.isEmpty()) return;
    platform::trace(differing);
    ui::message(differing);
}

print::CardExchange CCardDlg::exchange() const {
    const books::TransactionRecord& record = books::transactionRecord();
    return {record.reply, maskedCard_};
}

std::optional<print::Document> CCardDlg::cardReceipt() const {
    const books::SlipIdentity& slip = books::transactionRecord().slip;
    const bool isReprint = app::session().WorkMode == app::kPreviousTransaction;
    return print::cardReceipt(slip.date, slip.junNo, slip.userId, exchange(), isReprint);
}

void CCardDlg::showBalance() {
    const books::HostReply& reply = books::transactionRecord().reply;
    const auto amount = [](const QString& text) { return groupDigits(formatWon(parseWon(text))) + u"원"_s; };
    // The sign goes in front of what is grouped already, and only the balance has one.
    const QString sign = reply.balanceSign == u"0" ? QString() : u"-"_s;
    platform::Rows rows;
    rows.columns = 2;
    rows.cells = {u"통장잔액"_s, sign + amount(reply.accountBalance), u"출금 한도"_s,
                  amount(reply.withdrawalLimit)};
    results_->setRows(rows);
}

void CCardDlg::reprintPrevious() {
    books::TransactionRecord& record = books::transactionRecord();
    const auto slip = books::findByTransactionNumber(record.reply.transactionNumber);
    // The slip of the visit before is not what was asked for.
    record.slip = {};
    if (slip) {
        record.slip = {slip->DDate, slip->JunNo, slip->UserID, slip->GCode};
        record.amounts.supply = slip->PMoney;
        record.amounts.vat = slip->BMoney;
        record.amounts.deposit = slip->YMoney + slip->GMoney;
        record.amounts.containerRecovery = slip->YDMoney;
        record.amountToCharge = slip->WonMoney + slip->CardMoney;
        record.amounts.previousReceivable = books::receivable(slip->GCode);
    }
    loadCustomer();
    print::SlipPapers papers(record.slip.date, record.slip.junNo, record.slip.userId);
    papers.markAllReprints();
    printCopies(papers);
}

void CCardDlg::tellOpenPayment() const {
    if (!paymentNumber_.isEmpty() && isThisSlipOpen()) {
        ui::message(u"카드결제 결과가 확인되지 않았습니다..! 다음 결제전이나 로그인때 다시 확인합니다."_s);
    }
}

void CCardDlg::goBack() {
    if (log_->isExchanging()) return;
    // No card any more, also not while a message is read: the collection may be gone.
    ReaderEnable(false);
    const books::SlipIdentity& slip = books::transactionRecord().slip;
    // A card payment that was not approved has not been made: its collection is taken back.
    if (isVisit() && !isApproved_ && books::transactionRecord().amounts.card > Won()) {
        if (!books::takeBackCollection(slip.date, slip.junNo, slip.userId)) {
            platform::trace(u"the collection %1 of %2 could not be taken back"_s.arg(slip.junNo, slip.date));
            ui::message(
                u"결제를 취소한 입금전표를 되돌리지 못했습니다..! 입금전표 목록에서 다시 확인하세요!!"_s);
        }
    }
    tellOpenPayment();
    if (isApproved_) app::session().SlipDone = 1;
    close(Cancelled);
}

void CCardDlg::finish() {
    if (log_->isExchanging()) return;
    const int mode = app::session().WorkMode;
    if (mode == app::kBalanceInquiry || mode == app::kPreviousTransaction) {
        close(Accepted);
    } else if (isApproved_) {
        app::session().SlipDone = 1;
        close(Accepted);
    } else if (books::transactionRecord().amounts.card > Won()) {
        ui::message(isThisSlipOpen()
                        ? u"카드결제 결과가 확인되지 않았습니다..! [결과확인]을 누르거나, "
                          "결제방법을 바꾸려면 [이전]을 누르세요!!"_s
                        : u"카드결제가 승인되지 않았습니다..! 결제방법을 바꾸려면 [이전]을 누르세요!!"_s);
    } else if (mode == app::kSimplePayment) {
        close(Accepted);
    } else {
        ReaderEnable(false);
        tellOpenPayment();
        closeAndOpen(app::dialogs::kSlipPrinting);
    }
}

}  // namespace van
