#pragma once

#include <QSet>
#include <QString>
#include <array>
#include <optional>
#include <utility>

#include "app/KeypadRequest.h"
#include "sales/LineAmounts.h"
#include "sales/PurchaseHistory.h"
#include "sales/SlipLine.h"

namespace sales {

/// Asks how much of a product goes on the slip of the session's customer, and about quantities that are no
/// line or unusual ones.
class QuantityQuestion {
  public:
    /// Asks on the keypad; `present` is what the line has. Nothing when the keypad was left with "취  소", or
    /// when isTaken() is false. A product that was scanned begins with the bottle that was: scanned again it
    /// is one more, and another product's code confirms what is shown.
    std::optional<Quantities> ask(const QString& pCode, const std::optional<Quantities>& present,
                                  bool isScanned = false);

    /// The product whose code has confirmed the last quantities, told once; empty when none has.
    QString takeScanned() { return std::exchange(scanned_, {}); }

    /// False, and told why, for quantities that make no line. Ten times of what the customer had are asked
    /// about, once for each product.
    bool isTaken(const QString& pCode, const Quantities& quantities);

    /// True when the amounts are what the line costs today, or may become that with its next quantities: a
    /// tap takes nothing back that was agreed on.
    static bool mayReprice(const LineKey& line, const LineAmounts& present);

    /// What the customer bought before this slip.
    const PurchaseHistory& history();

  private:
    app::Scan scan(const QString& code, const QString& pCode, std::array<QString, 3>* entries);

    std::optional<PurchaseHistory> history_;
    QString scanned_;
    QSet<QString> meant_;  ///< Products whose unusual quantity was meant.
};

}  // namespace sales
