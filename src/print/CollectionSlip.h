#pragma once

#include <QStringView>
#include <optional>

#include "app/CollectionSlip.h"
#include "print/Document.h"
#include "print/SlipBlocks.h"

namespace print {

/// The collection slip 입금표 of that date, number and user; nothing when MTMOK has no such row.
std::optional<Document> collectionSlip(QStringView date, QStringView junNo, QStringView userId, Copy copy,
                                       bool reprint);

/// How a slip was paid: card, cash, unpaid, recovery, earlier receivable paid, the receivable before and
/// after, and the transaction number. Amounts of 0 take no line.
void paymentBlock(Document& document, const app::CollectionSlip& slip);

}  // namespace print
