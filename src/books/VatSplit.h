#pragma once

#include "platform/Won.h"

namespace books {

/// An amount with VAT, taken apart, in won.
struct VatSplit {
    platform::Won supply;
    platform::Won vat;
};

/// Supply is amount / 1.1 rounded to the nearest won (elevenths are never halfway; a negative amount gives
/// the negated split of the positive one), VAT is the rest.
VatSplit splitVat(platform::Won amount);

}  // namespace books
