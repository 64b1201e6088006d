#include "sales/Checkout.h"

#include "books/PayableTotal.h"

namespace sales {

platform::Won slipTotal(const SlipSums& sums, QStringView vatMode) {
    return books::payableTotal(sums.supply, sums.vat, vatMode) + sums.deposits();
}

}  // namespace sales
