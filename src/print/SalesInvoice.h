#pragma once

#include <QStringView>
#include <optional>

#include "print/Document.h"
#include "print/SlipBlocks.h"

namespace print {

/// The sales invoice 거래명세서 of a saved slip; nothing when MTM has no line of it. The total is rounded as
/// the user's VAT rounding mode says. A collection slip of the same number adds how the slip was paid.
std::optional<Document> salesInvoice(QStringView date, QStringView junNo, QStringView userId, Copy copy,
                                     bool reprint);

}  // namespace print
