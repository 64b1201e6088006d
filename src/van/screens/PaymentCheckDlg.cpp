#include "van/screens/PaymentCheckDlg.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QTimer>

#include "app/Dialogs.h"
#include "print/CardReceipt.h"
#include "print/PrintJob.h"
#include "ui/Messages.h"
#include "ui/WaitCursor.h"
#include "van/PaymentInquiry.h"
#include "van/screens/HostRequest.h"

namespace van {
namespace {

using namespace Qt::Literals::StringLiterals;

enum Control { kCustomer = 1059, kSlip = 1088, kAmount = 1084 };
constexpr short kAnsweredNumberField = 1131;

QString won(platform::Won amount) {
    return platform::groupDigits(platform::formatWon(amount)) + u"원"_s;
}

/// The payment as a message names it.
QString named(const books::JournalPayment& payment) {
    return u"[%1] %2번 %3"_s.arg(payment.slip.GName, payment.slip.JunNo, won(payment.charged));
}

}  // namespace

CPaymentCheckDlg::CPaymentCheckDlg() : Screen(app::dialogs::kPaymentCheck), component_(this) {
    addLabel(0, u"카드결제 확인"_s, {4, 4, 232, 26}, ui::FontHeight::Title, Qt::AlignCenter);
    addLabel(kCustomer, {}, {8, 40, 224, 28}, ui::FontHeight::Medium);
    addLabel(kSlip, {}, {8, 70, 224, 28}, ui::FontHeight::Medium);
    addLabel(kAmount, {}, {8, 104, 224, 32}, ui::FontHeight::Title, Qt::AlignRight | Qt::AlignVCenter);
    addLabel(0, u"결제가 승인되었는지 카드사에 확인합니다."_s, {8, 142, 224, 26});
    log_.emplace(component_, place(1142, new QPlainTextEdit(this), {2, 202, 236, 78}), [this] {
        const QString text = readReply(component_, books::RequestType::PreviousTransaction, &reply_);
        answeredNumber_ = receivedField(component_, kAnsweredNumberField);
        return text;
    });
    connect(&*log_, &ExchangeLog::ended, this, [this] { answered(); });
    // The question changes nothing on the terminal, so it may be left at any time.
    addLeaveButton(1003, u"닫  기"_s);

    books::closeStoppedPayments();
    waiting_ = books::unsettledPayments();
    if (!waiting_.isEmpty()) show(waiting_.first());
    QTimer::singleShot(0, this, [this] { askNext(); });
}

void CPaymentCheckDlg::show(const books::JournalPayment& payment) {
    const books::CollectionSlip& slip = payment.slip;
    setFittedText(kCustomer, slip.GName, ui::FontHeight::Medium);
    setFittedText(kSlip, u"%1  %2번"_s.arg(slip.DDate, slip.JunNo), ui::FontHeight::Medium);
    setFittedText(kAmount, won(payment.charged), ui::FontHeight::Title);
}

void CPaymentCheckDlg::askNext() {
    if (waiting_.isEmpty()) {
        close(Accepted);
        return;
    }
    asked_ = waiting_.takeFirst();
    reply_ = {};
    answeredNumber_.clear();
    show(asked_);
    log_->set(u"결제결과 확인중!"_s);
    log_->begin();
    log_->appendUnseen(askAbout(component_, asked_.number));
}

void CPaymentCheckDlg::answered() {
    if (reply_.responseCode.isEmpty()) {
        ui::message(u"카드사와 연결되지 않아 카드결제 결과를 확인하지 못했습니다..! "_s + named(asked_));
        close(Cancelled);
        return;
    }
    // Looked up before the approval makes the slip "결제", which would pass for printed.
    const print::SlipPapers papers(asked_.slip.DDate, asked_.slip.JunNo, asked_.slip.UserID);
    const SettledPayment settled = settle(asked_, reply_, answeredNumber_);
    switch (settled.verdict) {
        case PaymentVerdict::Approved: approved(settled.slip, papers); break;
        case PaymentVerdict::NotCharged:
            if (settled.isKept) {
                ui::message(u"결제되지 않았습니다..! %1은 청구되지 않았습니다."_s.arg(named(asked_)));
            } else {
                ui::message(u"결제결과를 저장하지 못했습니다..! "_s + named(asked_));
            }
            break;
        case PaymentVerdict::Open:
            ui::message(
                u"카드사가 결제결과를 알려주지 않았습니다..! %1 사무실에 확인하세요!!"_s.arg(named(asked_)));
            break;
    }
    QTimer::singleShot(0, this, [this] { askNext(); });
}

void CPaymentCheckDlg::approved(const std::optional<books::CollectionSlip>& slip,
                                const print::SlipPapers& papers) {
    if (!slip) {
        ui::message(
            u"승인되었으나 전표에 저장하지 못했습니다..! 거래번호 : %1"_s.arg(reply_.transactionNumber));
        return;
    }
    const bool isMoved = slip->JunNo != asked_.slip.JunNo;
    const bool isWithoutSale = slip->Gubun != asked_.slip.Gubun ||
                               (slip->amounts().total.isZero() && !asked_.slip.amounts().total.isZero());
    asked_.slip = *slip;
    ui::message(u"승인된 결제입니다..! %1 거래번호 : %2"_s.arg(named(asked_), slip->BANKTRANNO));
    if (isWithoutSale) {
        ui::message(u"그 결제의 매출전표가 없어, 받은 돈으로 입금전표 %1번에 넣고 외상에서 뺐습니다..!"_s.arg(
            slip->JunNo));
    }
    if (!slip->isSimplePayment() && !isWithoutSale && !slip->UnderMoney.isZero()) {
        ui::message(u"그 결제의 매출이 바뀌어 결제와의 차액 ['%1'원]을 미결제액에 넣었습니다..!"_s.arg(
            platform::groupDigits(platform::formatWon(slip->UnderMoney))));
    }
    const QString otherAmount = tellApprovedAmount(reply_, asked_.charged);
    if (!otherAmount.isEmpty()) ui::message(otherAmount);
    if (ui::askYesNo(u"명세서를 출력할까요?"_s, u"명세서출력"_s)) {
        print(isMoved ? print::SlipPapers(slip->DDate, slip->JunNo, slip->UserID) : papers, *slip);
    }
}

void CPaymentCheckDlg::print(print::SlipPapers papers, const books::CollectionSlip& slip) {
    if (slip.isSimplePayment()) {
        print::printDocument(print::cardReceipt(slip, print::CardExchange{reply_, {}}, false),
                             ui::WaitCursor::alive);
        return;
    }
    const auto printCopy = [&](books::Copy copy) {
        for (const books::Paper paper : {books::Paper::Invoice, books::Paper::CollectionSlip}) {
            if (!papers.print({&paper, 1}, copy, ui::WaitCursor::alive).isEmpty()) return true;
        }
        return false;
    };
    if (printCopy(books::Copy::Seller) &&
        ui::askYesNo(u"구매자용 명세서를 출력할까요?"_s, u"구매자용 명세서출력"_s, ui::MessageIcon::Question))
        printCopy(books::Copy::Buyer);
}

}  // namespace van
