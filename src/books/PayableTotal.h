#pragma once

#include <QStringView>

#include "platform/Won.h"

namespace books {

/// What the customer pays for the goods of a slip, without deposits, in won. `vatMode` is the salesman's VAT
/// rounding mode: "2" takes supply × 1.1 rounded to ten won, "3" to a hundred, half rounding up; any other
/// takes supply + vat as they are.
platform::Won payableTotal(platform::Won supply, platform::Won vat, QStringView vatMode);

}  // namespace books
