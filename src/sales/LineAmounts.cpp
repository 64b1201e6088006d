#include "sales/LineAmounts.h"

namespace sales {

using platform::Won;

namespace {

/// subtotal / 1.1 to the nearest won, without leaving 64 bits on the way.
Won supplyOf(Won subtotal) {
    const std::int64_t elevenths = subtotal.value() / 11;
    const std::int64_t rest = subtotal.value() % 11;
    return Won(elevenths * 10 + (rest * 20 + (rest < 0 ? -11 : 11)) / 22);
}

}  // namespace

LineAmounts withSupply(LineAmounts line, Won supply) {
    line.supply = supply;
    return line;
}

LineAmounts withVat(LineAmounts line, Won vat) {
    line.vat = vat;
    return line;
}

LineAmounts withSubtotal(LineAmounts line, Won subtotal) {
    line.supply = supplyOf(subtotal);
    line.vat = subtotal - line.supply;
    return line;
}

LineAmounts withTotal(LineAmounts line, Won total) {
    return withSubtotal(line, total - line.deposits());
}

}  // namespace sales
