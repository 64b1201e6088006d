#pragma once

#include <QHash>
#include <QString>
#include <QStringView>
#include <optional>

#include "platform/Won.h"

namespace books {

/// What a sale comes to, in won: the goods as they are payable and the deposits.
struct SaleAmounts {
    platform::Won supply;
    platform::Won vat;  ///< What is payable for the goods, less the supply.
    platform::Won crateDeposit;
    platform::Won bottleDeposit;

    platform::Won sales() const { return supply + vat; }
    platform::Won deposit() const { return crateDeposit + bottleDeposit; }
    platform::Won total() const { return sales() + deposit(); }

    friend SaleAmounts operator-(const SaleAmounts& after, const SaleAmounts& before);
    friend bool operator==(const SaleAmounts&, const SaleAmounts&) = default;
};

/// The salesman's VAT rounding mode as payableTotal() takes it; empty for an unknown one.
QString vatMode(QStringView userId);

/// The customer's saved sale of that date, number and user, rounded as that salesman's VAT mode says; nothing
/// without one.
std::optional<SaleAmounts> savedSale(QStringView date, QStringView junNo, QStringView userId,
                                     QStringView gCode);

/// What each slip of the user's day comes to, by number, rounded in the same way.
QHash<QString, SaleAmounts> salesOfDay(QStringView date, QStringView userId);

}  // namespace books
