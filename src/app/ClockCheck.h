#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>

/// What a wrong clock or work date would do to the slips, said before any is written.
namespace app {

/// The time of the newest slip that was saved on the terminal, "yyyy-MM-dd HH:mm"; empty without one. An
/// order of the office has no time.
QString newestSlip();

/// What is said at login of a clock that is earlier than the newest slip, and of a work date that is not
/// today; empty when both are as usual.
QString clockProblem(QStringView workDate, const QDateTime& now, QStringView newest);

/// What is said on the menu when the day has changed since the login.
QString newDay(QStringView workDate, const QDateTime& now);

}  // namespace app
