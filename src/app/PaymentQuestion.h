#pragma once

#include <QStringView>

#include "books/TransactionRecord.h"

/// The question to the card host about open payments, asked before something that must not meet one.
namespace app {

/// Asks the host about every open payment of the terminal (459), which tells the salesman what was found; for
/// books::askAboutPayments.
void askHost();

/// Takes the collections back whose card payment was given up or not charged (books::takeBackUnpaid), and
/// names them to the salesman.
void takeBackUnpaid(const books::SlipIdentity& current = {});

/// Asks so about the slips of that date and number, of one user or, with an empty id, of everybody, before
/// anything of them is deleted. False, told, when it stays open what became of a payment, or when it turned
/// out to be approved: that is another thing to delete.
bool mayDelete(QStringView date, QStringView junNo, QStringView userId);

}  // namespace app
