#pragma once

#include <QStringView>
#include <optional>

#include "books/CollectionSlip.h"
#include "print/Document.h"
#include "print/SlipBlocks.h"

namespace print {

/// The collection slip 입금표 of that date, number and user; nothing when MTMOK has no such row.
std::optional<Document> collectionSlip(QStringView date, QStringView junNo, QStringView userId, Copy copy,
                                       bool reprint);

/// How a slip was paid: card, cash, unpaid, container recovery and earlier receivable paid, those that are
/// not 0; the receivable before and after; and the transaction number when it was paid by an approved
/// exchange.
void paymentBlock(Document& document, const books::CollectionSlip& slip);

/// "거래번호 : " and the transaction number; nothing for an empty one.
void transactionNumberLine(Document& document, QStringView transactionNumber);

}  // namespace print
