#pragma once

#include <QStringView>

#include "platform/Won.h"
#include "sales/LineAmounts.h"

namespace sales {

/// What the slip comes to, in won: the goods as the salesman's VAT rounding mode makes them payable, and the
/// deposits. It is shown as 합계.
platform::Won slipTotal(const SlipSums& sums, QStringView vatMode);

}  // namespace sales
