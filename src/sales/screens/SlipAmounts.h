#pragma once

#include <QStringView>
#include <span>

#include "sales/LineAmounts.h"

namespace sales {

/// One of the slip's amounts: the selected line's value and the slip's sum, and for an amount that can be
/// keyed its button and how.
struct SlipAmount {
    QStringView caption;
    int top;
    int lineValue;
    int slipSum;
    platform::Won (*of)(const LineAmounts&);
    int button = 0;
    QStringView title{};                                         ///< The keypad's.
    LineAmounts (*apply)(LineAmounts, platform::Won) = nullptr;  ///< What the line becomes.
    QStringView emptyMessage{};                                  ///< The refusal on a slip without lines.
};

/// The amounts of dialog 134 from top to bottom.
std::span<const SlipAmount> slipAmounts();

}  // namespace sales
