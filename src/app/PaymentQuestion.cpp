#include "app/PaymentQuestion.h"

#include "app/Dialogs.h"
#include "books/OpenPayments.h"
#include "ui/Messages.h"
#include "ui/Terminal.h"

namespace app {

PaymentQuestion askAboutPayments(const std::function<std::optional<books::JournalPayment>()>& find) {
    const auto before = find();
    if (!before) return {};
    ui::runScreen(dialogs::kPaymentCheck);
    if (auto open = find()) return {PaymentAnswer::Open, std::move(open)};
    auto settled = books::findPayment(before->number);
    const bool isApproved = settled && settled->state == books::PaymentState::Approved;
    return {isApproved ? PaymentAnswer::Approved : PaymentAnswer::Free, std::move(settled)};
}

bool mayDelete(QStringView date, QStringView junNo, QStringView userId) {
    const PaymentQuestion question =
        askAboutPayments([&] { return books::unsettledPayment(date, junNo, userId); });
    if (question.answer == PaymentAnswer::Open) ui::message(books::refuseToDelete(*question.inTheWay));
    return question.answer == PaymentAnswer::Free;
}

}  // namespace app
