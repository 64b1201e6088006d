#include "container/ContainerLine.h"

namespace container {

using platform::formatWon;
using platform::parseInteger;
using platform::Won;

ContainerAmounts& ContainerAmounts::operator+=(const ContainerAmounts& other) {
    crates += other.crates;
    bottles += other.bottles;
    crateFee += other.crateFee;
    bottleFee += other.bottleFee;
    return *this;
}

ContainerAmounts containerAmounts(const ContainerCounts& counts, const ContainerPrices& prices) {
    // A count has as many digits as are keyed; sums and products of them stay within 64 bits.
    const std::int64_t crates = (Won(counts.emptyCrates) + Won(counts.filledCrates)).value();
    const std::int64_t bottles = (counts.filledCrates * Won(prices.BoxBonEa) + Won(counts.bottles)).value();
    const Won looseBottles =
        prices.BoxBonEa == 0 ? Won() : Won((counts.bottles * prices.YGMoney2).value() / prices.BoxBonEa);
    return {.crates = crates * prices.YGMoney1,
            .bottles = counts.filledCrates * prices.YGMoney2 + looseBottles,
            .crateFee = crates * prices.GBoxMoney1,
            .bottleFee = bottles * prices.GBonMoney1};
}

ContainerCounts ContainerKey::counts() const {
    return {
        .bottles = parseInteger(Bon), .emptyCrates = parseInteger(FBox), .filledCrates = parseInteger(NBox)};
}

ContainerKey keyOf(const QString& pCode, const ContainerCounts& counts) {
    return {pCode, QString::number(counts.emptyCrates), QString::number(counts.filledCrates),
            QString::number(counts.bottles)};
}

void ContainerLine::setCounts(const ContainerCounts& counts) {
    FBox = QString::number(counts.emptyCrates);
    NBox = QString::number(counts.filledCrates);
    Bon = QString::number(counts.bottles);
}

void ContainerLine::setAmounts(const ContainerAmounts& amounts) {
    YMONEY = formatWon(amounts.crates);
    GMONEY = formatWon(amounts.bottles);
    YSAMT = formatWon(amounts.crateFee);
    GSAMT = formatWon(amounts.bottleFee);
}

}  // namespace container
