#pragma once

#include <QStringView>

#include "platform/Won.h"
#include "sales/LineAmounts.h"

namespace sales {

/// What the slip comes to, in won: the goods as the salesman's VAT rounding mode makes them payable, and the
/// deposits. It is shown as 합계.
platform::Won slipTotal(const SlipSums& sums, QStringView vatMode);

/// Leaves the slip's sums and the customer's balance in the session, for the collection of money.
void handOver(const SlipSums& sums, platform::Won receivable);

}  // namespace sales
