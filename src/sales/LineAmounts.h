#pragma once

#include "platform/Won.h"

namespace sales {

/// The four amounts of a slip line, in won; also their sums over a slip. They are stored as `MMoney`,
/// `BMoney`, `YMoney` and `GMoney`.
struct LineAmounts {
    platform::Won supply;
    platform::Won vat;
    platform::Won crateDeposit;
    platform::Won bottleDeposit;

    /// Supply and VAT, without the deposits.
    platform::Won subtotal() const { return supply + vat; }
    platform::Won deposits() const { return crateDeposit + bottleDeposit; }
    /// All four, unrounded.
    platform::Won total() const { return subtotal() + deposits(); }

    LineAmounts& operator+=(const LineAmounts& other) {
        supply += other.supply;
        vat += other.vat;
        crateDeposit += other.crateDeposit;
        bottleDeposit += other.bottleDeposit;
        return *this;
    }
    LineAmounts& operator-=(const LineAmounts& other) {
        supply -= other.supply;
        vat -= other.vat;
        crateDeposit -= other.crateDeposit;
        bottleDeposit -= other.bottleDeposit;
        return *this;
    }
    friend bool operator==(const LineAmounts&, const LineAmounts&) = default;
};

/// The sums of a slip's lines. A line's change is applied as `sums -= before; sums += after;`.
using SlipSums = LineAmounts;

/// The line after one of its amounts was keyed. Deposits never change.
LineAmounts withSupply(LineAmounts line, platform::Won supply);
LineAmounts withVat(LineAmounts line, platform::Won vat);

/// Splits the keyed subtotal with books::splitVat.
LineAmounts withSubtotal(LineAmounts line, platform::Won subtotal);

/// Takes the line's deposits off the keyed total and splits the rest as withSubtotal does. A total below the
/// deposits gives negative supply and VAT.
LineAmounts withTotal(LineAmounts line, platform::Won total);

}  // namespace sales
