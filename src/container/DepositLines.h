#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "container/ContainerLine.h"

namespace container {

/// One product of a visit: what its deposits were charged for, and what is taken back of it.
struct DepositLine {
    QString PCode;
    QString PName;
    QString Box;  ///< Boxes sold; empty for a product that is only taken back.
    QString Bon;  ///< Single bottles sold.
    platform::Won crateDeposit;
    platform::Won bottleDeposit;
    std::optional<ContainerKey> returned;  ///< The working container slip's line of the product.
    platform::Won recovery;                ///< What that line is worth.

    platform::Won deposit() const { return crateDeposit + bottleDeposit; }
};

/// The lines of the working sales slip by product code descending, then the products that the working
/// container slip holds beyond them. What is taken back of a product sold in two lines stands on both.
QList<DepositLine> depositLines();

}  // namespace container
