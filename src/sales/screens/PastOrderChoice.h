#pragma once

#include <QString>
#include <QStringList>

#include "sales/PastOrder.h"

namespace sales {

/// Replaces the working slip by one of the customer's last slips: on an empty slip by the newest, on one with
/// lines by the one that is chosen, after a question where what is `lost` by it was keyed. Tells what was
/// left out, and why nothing was taken. True when the lines are others now.
bool takePastOrder(const PurchaseHistory& history, const SlipHead& head, bool hasLines, bool isLost);

/// The names, as many as a message has room for.
QString listed(const QStringList& names);

}  // namespace sales
