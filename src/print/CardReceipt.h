#pragma once

#include <QString>
#include <QStringView>
#include <optional>

#include "books/CollectionSlip.h"
#include "books/TransactionRecord.h"
#include "print/Document.h"

namespace print {

/// What a receipt shows of the exchange beside the slip's row.
struct CardExchange {
    books::HostReply reply;
    QString maskedCardNumber;  ///< As platform::maskedCardNumber gives it, never the whole number; no line
                               ///< when empty.
};

/// The card receipt of a simple payment: what it came to (합계), what was charged (결제금액), and 거래금액,
/// 수수료액, 입금금액 and 거래잔액 as the exchange's reply has them; without an exchange, as for a reprint,
/// the amount charged is all that is known of them.
Document cardReceipt(const books::CollectionSlip& slip, const std::optional<CardExchange>& exchange,
                     bool reprint);

/// The same of a saved payment, with an exchange that of the reply's transaction number. Nothing when there
/// is no such row "단순결제" of that date, number and user.
std::optional<Document> cardReceipt(QStringView date, QStringView junNo, QStringView userId,
                                    const std::optional<CardExchange>& exchange, bool reprint);

/// The receipt of a transaction that the terminal has no sale of: what the host says of it. A collection
/// with the transaction's number says whose it was and when; without one the customer is not named, `date` is
/// today's and `userId` who asks.
Document hostReceipt(QStringView date, QStringView userId, const CardExchange& exchange);

}  // namespace print
