#pragma once

#include <QString>
#include <QStringView>
#include <optional>

#include "platform/Won.h"

namespace books {

/// A customer, by the columns of `GARAE`. Each look-up fills those that its use needs; the others are empty.
struct Customer {
    QString GName{};
    QString Sno{};    ///< Business registration number.
    QString Gupju{};  ///< Owner.
    QString Juso{};   ///< Address.
    QString Tel{};
    QString Majin{};    ///< General margin as stored, whole percent.
    QString Gubun{};    ///< Kind: "일반", "공용" or another.
    QString CJMoney{};  ///< Receivable balance as stored.

    platform::Won receivable() const { return platform::parseWon(CJMoney); }
};

/// For the customer list: telephone, margin and balance. Nothing for an unknown one.
std::optional<Customer> listedCustomer(QStringView gCode);
/// For a sales slip: balance and kind.
std::optional<Customer> slipCustomer(QStringView gCode);
/// For a container slip: the same.
std::optional<Customer> containerCustomer(QStringView gCode);
/// For the papers of a slip, which carries the name itself: number, owner, address and telephone.
std::optional<Customer> paperCustomer(QStringView gCode);
/// For the card dialog and its receipts: name, number, owner and address, texts of X for an unknown customer.
Customer cardCustomer(QStringView gCode);

}  // namespace books
