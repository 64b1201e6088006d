#pragma once

#include <QString>
#include <QStringView>
#include <optional>

#include "platform/Rows.h"
#include "platform/Won.h"

namespace sales {

/// The customers whose key is `seek` (one jamo, or "00"), names descending, in three columns: code, name,
/// last trade date. `ownOnly` keeps to those of salesman `userId`.
platform::Rows customers(QStringView seek, QStringView userId, bool ownOnly);

/// What the list shows below the clicked customer.
struct CustomerFooter {
    QString tel;
    QString Majin;          ///< The general margin as stored, whole percent.
    platform::Won CJMoney;  ///< Receivable balance.
};

/// Nothing when there is no such customer.
std::optional<CustomerFooter> customerFooter(QStringView gcode);

/// What a slip needs of its customer; kind empty and balance 0 for an unknown one.
struct CustomerAccount {
    QString Gubun;          ///< The customer's kind: "일반", "공용" or another.
    platform::Won CJMoney;  ///< Receivable balance.
};
CustomerAccount customerAccount(QStringView gcode);

}  // namespace sales
