#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>
#include <cstdint>
#include <optional>

#include "sales/ProductQuery.h"
#include "sales/PurchaseHistory.h"
#include "sales/SlipLine.h"

/// New lines of the working slip: one, or all of a slip from before.
namespace sales {

/// Neither boxes nor bottles of a line may be more, whatever the sign.
inline constexpr std::int64_t kHighestQuantity = 999;

/// Whose slip the lines are for.
struct SlipHead {
    QString DDate;
    QString JunNo;
    QString GCode;
    QString GName;
    QString CustomerKind;
};

/// A line of that much of a product at today's prices.
SlipLine newLine(const SlipHead& head, QStringView pCode, const ProductName& product,
                 const Quantities& quantities);

struct TakenOver {
    int lines = 0;
    QStringList leftOut;  ///< Names of the products that the customer is not offered any more.
};

/// Replaces the working slip by the products of a slip from before, a line for each at today's prices.
/// Nothing, and the working slip stays as it was, when the database does not take the change.
std::optional<TakenOver> takeOver(const SlipHead& head, const PastSlip& slip);

}  // namespace sales
