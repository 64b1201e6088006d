#pragma once

#include <QDate>
#include <QString>

#include "rovanactl/demo/Demo.h"

/// The soak: one terminal that is worked on day after day without being started anew.
namespace soak {

inline constexpr int kVisitsADay = 100;

/// The date and the salesman of the day with that number, from 0.
inline QString dateOf(int number) {
    return QDate(2026, 11, 21).addDays(number).toString(Qt::ISODate);
}
inline QString userOf(int number) {
    return QString(QChar(number % 2 == 0 ? u'A' : u'C'));
}

/// The script of that day, from the login to the close, which is the same each time. It ends with what the
/// close and the customers' receivables must be by what was keyed. `data` is what the login imports.
QString writeDay(int number, const admin::demo::Data& data);

}  // namespace soak
