#pragma once

#include <QStringView>
#include <functional>
#include <optional>

#include "books/PaymentJournal.h"

/// The question to the card host about open payments, asked before something that must not meet one.
namespace app {

enum class PaymentAnswer {
    Free,      ///< Nothing was in the way, or it was not charged.
    Approved,  ///< What was in the way is charged; the salesman was told.
    Open,      ///< It stays open; nothing was said about what that keeps from happening.
};

struct PaymentQuestion {
    PaymentAnswer answer = PaymentAnswer::Free;
    std::optional<books::JournalPayment>
        inTheWay;  ///< As it stands now; nothing where nothing was in the way.
};

/// Asks the host about every open payment of the terminal (459) when `find` finds one in the way, and looks
/// again.
PaymentQuestion askAboutPayments(const std::function<std::optional<books::JournalPayment>()>& find);

/// Takes the collections back whose card payment was given up or not charged (books::takeBackUnpaid), and
/// names them to the salesman.
void takeBackUnpaid(const books::SlipIdentity& current = {});

/// Asks so about the slips of that date and number, of one user or, with an empty id, of everybody, before
/// anything of them is deleted. False, told, when it stays open what became of a payment, or when it turned
/// out to be approved: that is another thing to delete.
bool mayDelete(QStringView date, QStringView junNo, QStringView userId);

}  // namespace app
