#pragma once

#include <QSet>
#include <QString>
#include <optional>

#include "sales/PurchaseHistory.h"

namespace sales {

/// Asks how much of a product goes on the slip of the session's customer, and about quantities that are no
/// line or unusual ones.
class QuantityQuestion {
  public:
    /// Asks on the keypad; `present` is what the line has. Nothing when the keypad was left with "취  소", or
    /// when isTaken() is false.
    std::optional<Quantities> ask(const QString& pCode, const std::optional<Quantities>& present);

    /// False, and told why, for quantities that make no line. Ten times of what the customer had are asked
    /// about, once for each product.
    bool isTaken(const QString& pCode, const Quantities& quantities);

    /// What the customer bought before this slip.
    const PurchaseHistory& history();

  private:
    std::optional<PurchaseHistory> history_;
    QSet<QString> meant_;  ///< Products whose unusual quantity was meant.
};

}  // namespace sales
