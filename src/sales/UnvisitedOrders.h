#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include "platform/Won.h"
#include "sales/SlipStore.h"

namespace sales {

/// An order of the office that nobody has delivered yet.
struct UnvisitedOrder {
    QString junNo;
    QString gName;
    QString tel;           ///< Empty for a customer who is not registered.
    platform::Won amount;  ///< What it comes to, in won.
};

/// The user's of the day, in the order in which the office sent them.
QList<UnvisitedOrder> unvisitedOrders(QStringView userId, QStringView workDate);

/// The list with these orders first, in their order; the other slips stay as they stand.
SlipList unvisitedFirst(const SlipList& list, const QList<UnvisitedOrder>& orders);

}  // namespace sales
