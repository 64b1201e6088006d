#pragma once

#include <QString>

#include "sales/Pricing.h"

namespace sales {

/// The name of the source as salesmen use it: 계약단가, 주류구분마진, 거래처마진, 판매단가.
QString sourceName(PriceSource source);

/// Where the price of `boxes` boxes and `bottles` bottles comes from, in lines: the source, the price of a
/// box and of a bottle with their VAT and what a margin adds, and the amounts that follow.
QString priceOrigin(const PricedLine& line, std::int64_t boxes, std::int64_t bottles);

/// How the payable total comes about, in lines: goods, the VAT of the lines, what rounding by the salesman's
/// VAT mode adds, the deposits, and the total.
QString totalOrigin(const SlipSums& lines, QStringView vatMode);

}  // namespace sales
