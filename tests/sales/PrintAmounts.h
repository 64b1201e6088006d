#pragma once

#include <cstdint>
#include <ostream>

#include "sales/LineAmounts.h"

namespace sales {

/// Supply, VAT, crate deposit and bottle deposit in won.
inline LineAmounts won(std::int64_t supply, std::int64_t vat, std::int64_t crates, std::int64_t bottles) {
    using platform::Won;
    return {Won(supply), Won(vat), Won(crates), Won(bottles)};
}

/// GoogleTest's printer.
inline void PrintTo(const LineAmounts& amounts, std::ostream* out) {
    *out << amounts.supply.value() << "/" << amounts.vat.value() << "/" << amounts.crateDeposit.value() << "/"
         << amounts.bottleDeposit.value();
}

}  // namespace sales
