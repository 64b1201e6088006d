#include "sales/SlipLine.h"

namespace sales {

using platform::formatWon;
using platform::parseWon;

LineAmounts SlipLine::amounts() const {
    return {parseWon(MMoney), parseWon(BMoney), parseWon(YMoney), parseWon(GMoney)};
}

void SlipLine::setAmounts(const LineAmounts& amounts) {
    MMoney = formatWon(amounts.supply);
    BMoney = formatWon(amounts.vat);
    YMoney = formatWon(amounts.crateDeposit);
    GMoney = formatWon(amounts.bottleDeposit);
}

}  // namespace sales
