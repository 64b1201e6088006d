#pragma once

#include <QStringView>
#include <optional>

#include "print/Document.h"
#include "print/SlipBlocks.h"

namespace print {

/// The container receipt 용공인수증 of a saved container slip: what was taken back, its worth and handling
/// fees in won, and the customer's container balance after it; nothing when YTM has no line of it.
std::optional<Document> containerReceipt(QStringView date, QStringView junNo, QStringView userId, Copy copy,
                                         bool reprint);

}  // namespace print
