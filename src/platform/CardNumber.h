#pragma once

#include <QLatin1StringView>
#include <QString>
#include <QStringView>

namespace platform {

/// The card number at the start of a track 2 text, as far as it may be shown: the first 6 and the last 4
/// digits, asterisks between; asterisks alone for fewer than 13 digits; empty without a digit.
QString maskedCardNumber(QStringView track2);
QString maskedCardNumber(QLatin1StringView track2);

}  // namespace platform
