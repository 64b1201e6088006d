#pragma once

#include <QStringView>

#include "platform/Won.h"

namespace books {

/// What the customer pays for the goods of a slip, without deposits, in won. `vatMode` is the salesman's VAT
/// rounding mode: "2" takes supply × 1.1 rounded to ten won, "3" to a hundred, half rounding up and an
/// amount below 0 cut towards it; any other takes supply + vat as they are.
platform::Won payableTotal(platform::Won supply, platform::Won vat, QStringView vatMode);

/// The VAT of a slip in won: payableTotal less the supply, so that the slip's parts add up to what is paid.
/// In a rounding mode it is not the sum `vat` of the lines.
platform::Won payableVat(platform::Won supply, platform::Won vat, QStringView vatMode);

}  // namespace books
