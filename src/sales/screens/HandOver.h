#pragma once

#include "platform/Won.h"
#include "sales/LineAmounts.h"

namespace sales {

/// Leaves what the slip of these lines comes to and the customer's balance in the session, for the collection
/// of money. `lines` sums them.
void handOver(const SlipSums& lines, platform::Won receivable);

}  // namespace sales
