#include "sales/Checkout.h"

#include "books/PayableTotal.h"

namespace sales {

SlipSums slipSums(const SlipSums& lines, QStringView vatMode) {
    SlipSums sums = lines;
    sums.vat = books::payableVat(lines.supply, lines.vat, vatMode);
    return sums;
}

}  // namespace sales
