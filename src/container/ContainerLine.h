#pragma once

#include <QString>
#include <array>
#include <cstdint>

#include "platform/Won.h"

namespace container {

/// What is taken back of one product. None of the counts is negative.
struct ContainerCounts {
    std::int64_t bottles = 0;       ///< 공병: single empties, `Bon`.
    std::int64_t emptyCrates = 0;   ///< 공상자: crates without bottles, `FBox`.
    std::int64_t filledCrates = 0;  ///< 입상자: crates filled with empties, `NBox`.

    bool isZero() const { return bottles == 0 && emptyCrates == 0 && filledCrates == 0; }
    friend bool operator==(const ContainerCounts&, const ContainerCounts&) = default;
};

/// The columns of `PUMMOK` that price what is taken back, in won for one crate or bottle.
struct ContainerPrices {
    platform::Won YGMoney1;     ///< Deposit of a crate.
    platform::Won YGMoney2;     ///< Deposit of the bottles of a full crate.
    std::int64_t BoxBonEa = 0;  ///< Bottles in a full crate; 0 when it is not known.
    platform::Won GBoxMoney1;   ///< Handling fee of a crate.
    platform::Won GBonMoney1;   ///< Handling fee of a bottle.
};

/// The amounts of a line, in won; also their sums over a slip.
struct ContainerAmounts {
    platform::Won crates;     ///< `YMONEY`: deposits of the crates.
    platform::Won bottles;    ///< `GMONEY`: deposits of the bottles.
    platform::Won crateFee;   ///< `YSAMT`, 용수수.
    platform::Won bottleFee;  ///< `GSAMT`, 공수수.

    /// What the customer gets for the empties: the deposits. The fees are no part of it.
    platform::Won recovery() const { return crates + bottles; }

    ContainerAmounts& operator+=(const ContainerAmounts& other);
    friend bool operator==(const ContainerAmounts&, const ContainerAmounts&) = default;
};

/// The amounts of a line of `counts`. Bottles outside a crate count for their share of a full crate's bottle
/// deposit, won below one cut off; without bottles in a full crate that share is 0.
ContainerAmounts containerAmounts(const ContainerCounts& counts, const ContainerPrices& prices);

/// The key of a slip's line.
struct ContainerKey {
    QString PCode;
    QString FBox;
    QString NBox;
    QString Bon;

    ContainerCounts counts() const;
    friend bool operator==(const ContainerKey&, const ContainerKey&) = default;
};

/// The key of a line of `counts`.
ContainerKey keyOf(const QString& pCode, const ContainerCounts& counts);

/// One line of a container slip: the columns that the working table and the saved slips share, as texts and
/// in their order.
struct ContainerLine {
    QString DDate;  ///< "yyyy-MM-dd".
    QString GCode;
    QString GName;
    QString JunNo;
    QString PCode;
    QString PName;
    QString FBox;
    QString NBox;
    QString Bon;
    QString YMONEY;
    QString GMONEY;
    QString YSAMT;
    QString GSAMT;

    friend bool operator==(const ContainerLine&, const ContainerLine&) = default;

    /// Makes the line one of `counts`.
    void setCounts(const ContainerCounts& counts);
    void setAmounts(const ContainerAmounts& amounts);
};

/// The columns of the working table; the saved slips have `UserID` behind them.
inline constexpr std::array kContainerLineColumns{
    &ContainerLine::DDate, &ContainerLine::GCode,  &ContainerLine::GName,  &ContainerLine::JunNo,
    &ContainerLine::PCode, &ContainerLine::PName,  &ContainerLine::FBox,   &ContainerLine::NBox,
    &ContainerLine::Bon,   &ContainerLine::YMONEY, &ContainerLine::GMONEY, &ContainerLine::YSAMT,
    &ContainerLine::GSAMT};

}  // namespace container
