#pragma once

#include <QStringView>
#include <optional>
#include <span>

#include "totals/Report.h"

namespace totals {

/// A report that is made from the terminal's tables alone.
struct DailyReport {
    QStringView name;     ///< By which the administrator's command knows it.
    QStringView caption;  ///< On its button.
    int button;           ///< Control id on the dialog of the day's totals.

    /// The report of a date, "yyyy-MM-dd", and a user; an empty user stands for everybody. Nothing when the
    /// database could not be read to the end.
    std::optional<Report> (*make)(QStringView date, QStringView user);
};

/// Every such report, in the order of the buttons.
std::span<const DailyReport> dailyReports();

/// The head of a report: title, date, and the salesman's name, his id for one without a name, or "전체" for
/// everybody.
Report reportHead(QStringView title, QStringView date, QStringView user);

}  // namespace totals
