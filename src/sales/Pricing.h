#pragma once

#include <QStringView>
#include <cstdint>

#include "platform/Won.h"
#include "sales/LineAmounts.h"

/// What a line of a sales slip costs. Of the four price sources exactly one is used, the first that applies.
namespace sales {

enum class PriceSource {
    Contract,        ///< The customer has a contract price for the product.
    ClassMargin,     ///< The customer has a margin, 0 included, for the product's liquor class.
    CustomerMargin,  ///< The customer has a general margin other than 0.
    Tier,            ///< None of these: selling tier A or B.
};

/// The prices that the sources work on, in won for one box or one bottle. Names in the database's spelling
/// are the columns.
struct ContractPrices {
    platform::Won boxmoney, boxbmoney, bonmoney, bonbmoney, ysmoney, ysboxmoney, ysbonmoney;
};
struct Deposits {
    platform::Won YGMoney1, YGMoney2, GBonMoney2;
};
struct UnitPrices {
    double boxSupply = 0, bottleSupply = 0, boxVat = 0, bottleVat = 0;
    Deposits deposits;
};

struct PricedLine {
    PriceSource source = PriceSource::Tier;
    LineAmounts amounts;       ///< All 0 when the source that applies has no price for the product.
    UnitPrices prices;         ///< What the source has for one, before a margin.
    double marginPercent = 0;  ///< Of the two margins, else 0.
    bool isTierA = false;      ///< Of the tiers.
};

/// The amounts of `boxes` boxes and `bottles` single bottles of product `pcode` for customer `gcode`.
/// `customerKind` is the customer's `Gubun`. A price that is missing or no number counts as 0.
PricedLine priceLine(QStringView gcode, QStringView customerKind, QStringView pcode, std::int64_t boxes,
                     std::int64_t bottles);

/// What one box and one bottle cost the customer today, VAT included, deposits not.
struct UnitCost {
    platform::Won box;
    platform::Won bottle;
};
UnitCost unitCost(QStringView gcode, QStringView customerKind, QStringView pcode);

/// Contract price times quantity, in whole won.
LineAmounts contractAmounts(const ContractPrices& prices, std::int64_t boxes, std::int64_t bottles);

/// Cost price raised by `marginPercent` whole percent, times quantity, rounded up for each of the four parts
/// (box and bottle, supply and VAT). Deposits carry no margin.
LineAmounts marginAmounts(const UnitPrices& prices, double marginPercent, std::int64_t boxes,
                          std::int64_t bottles);

/// Tier price times quantity.
LineAmounts tierAmounts(const UnitPrices& prices, std::int64_t boxes, std::int64_t bottles);

}  // namespace sales
