#include "sales/LineAmounts.h"

#include "books/VatSplit.h"

namespace sales {

using platform::Won;

LineAmounts withSupply(LineAmounts line, Won supply) {
    line.supply = supply;
    return line;
}

LineAmounts withVat(LineAmounts line, Won vat) {
    line.vat = vat;
    return line;
}

LineAmounts withSubtotal(LineAmounts line, Won subtotal) {
    const books::VatSplit split = books::splitVat(subtotal);
    line.supply = split.supply;
    line.vat = split.vat;
    return line;
}

LineAmounts withTotal(LineAmounts line, Won total) {
    return withSubtotal(line, total - line.deposits());
}

}  // namespace sales
