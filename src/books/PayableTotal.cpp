#include "books/PayableTotal.h"

#include <cstdint>

namespace books {
namespace {

/// Towards zero, held within the 64-bit limits.
std::int64_t integerPart(double value) {
    if (value >= 9223372036854775807.0) return INT64_MAX;
    if (value <= -9223372036854775808.0) return INT64_MIN;
    return static_cast<std::int64_t>(value);
}

}  // namespace

platform::Won payableTotal(platform::Won supply, platform::Won vat, QStringView vatMode) {
    const int step = vatMode == u"2" ? 10 : vatMode == u"3" ? 100 : 0;
    if (step == 0) return supply + vat;
    // The factor is the double 1.1 and the tax sum is not looked at: both are facts of this system.
    const double total = double(supply.value()) * 1.1;
    const auto remainder = int(integerPart(total) % step);
    return platform::Won(integerPart(remainder < step / 2 ? total - remainder : total + (step - remainder)));
}

platform::Won payableVat(platform::Won supply, platform::Won vat, QStringView vatMode) {
    return payableTotal(supply, vat, vatMode) - supply;
}

}  // namespace books
