#pragma once

#include "platform/Won.h"
#include "sales/LineAmounts.h"

namespace sales {

/// Leaves the slip's sums and the customer's balance in the session, for the collection of money.
void handOver(const SlipSums& sums, platform::Won receivable);

}  // namespace sales
