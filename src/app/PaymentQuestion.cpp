#include "app/PaymentQuestion.h"

#include "app/Dialogs.h"
#include "books/CollectionSlip.h"
#include "books/OpenPayments.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"

namespace app {

using namespace Qt::Literals::StringLiterals;

void askHost() {
    ui::runScreen(dialogs::kPaymentCheck);
}

void takeBackUnpaid(const books::SlipIdentity& current) {
    for (const books::CollectionSlip& slip : books::takeBackUnpaid(current)) {
        ui::message(u"카드결제가 되지 않은 [%1] %2번 입금전표(카드 %3원)를 결제전으로 되돌렸습니다..!"_s.arg(
            slip.GName, slip.JunNo, platform::groupDigits(platform::formatWon(slip.CardMoney))));
    }
}

bool mayDelete(QStringView date, QStringView junNo, QStringView userId) {
    const auto question =
        books::askAboutPayments([&] { return books::unsettledPayment(date, junNo, userId); }, askHost);
    if (question.answer == books::PaymentAnswer::Open) ui::message(books::refuseToDelete(*question.inTheWay));
    if (question.inTheWay) takeBackUnpaid();
    return question.answer == books::PaymentAnswer::Free;
}

}  // namespace app
