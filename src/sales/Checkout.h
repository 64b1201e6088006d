#pragma once

#include <QStringView>

#include "sales/LineAmounts.h"

namespace sales {

/// The slip's sums as they are shown and paid: `lines` sums its lines, and its VAT is what the salesman's
/// VAT rounding mode makes payable for the goods, less the supply. Their total is 합계.
SlipSums slipSums(const SlipSums& lines, QStringView vatMode);

}  // namespace sales
