#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <cstdint>
#include <optional>

#include "books/ContainerBalance.h"
#include "platform/Won.h"
#include "totals/Report.h"

/// The close of a salesman's day: his figures, the cash that he has counted, and what was kept of both.
namespace totals {

/// A day's figures; amounts in won. Orders of the office that nobody has delivered are in none of them.
struct DayFigures {
    platform::Won cash;
    platform::Won card;
    std::int64_t approvals = 0;  ///< Approved card payments.
    platform::Won unpaid;
    platform::Won earlierPaid;   ///< Earlier receivables paid.
    platform::Won recovery;      ///< Container recovery.
    std::int64_t boxes = 0;      ///< On sales slips.
    std::int64_t bottles = 0;    ///< The same, single bottles.
    books::Containers back;      ///< Taken back.
    std::int64_t openSlips = 0;  ///< Sales slips that nothing was collected for.
    platform::Won expectedCash;

    friend bool operator==(const DayFigures&, const DayFigures&) = default;
};

/// A close as it is kept.
struct DayClose {
    QString userId;
    QString closedAt;  ///< "yyyy-MM-dd HH:mm:ss".
    platform::Won counted;
    DayFigures figures;
    QString strip;               ///< The strip (fromText); empty in a close of an older terminal.
    QString visits;              ///< What stood under each visit (changesSince).
    std::int64_t deletions = 0;  ///< The day's deletions until then.
    QString printedAt;           ///< Empty until the strip was printed.

    friend bool operator==(const DayClose&, const DayClose&) = default;
};

/// Keeps a close of the user's day as it stands now, its whole strip included, safe on disk on return, and
/// returns all closes of that day, this one last. Nothing when it could not be kept; then nothing is.
std::optional<QList<DayClose>> closeDay(QStringView date, QStringView userId, platform::Won counted);

/// The kept closes of the day in their order; an empty user stands for everybody. Nothing when they could not
/// be read to the end.
std::optional<QList<DayClose>> closesOfDay(QStringView date, QStringView userId);

/// The visits that differ from what the last of a user's closes has kept; none before the first. Nothing when
/// they could not be read.
std::optional<QList<Row>> changesAfterClose(QStringView date, const QList<DayClose>& closes);

/// The strip of the last of a user's closes as it was kept. Where the day has changed since, it begins with
/// "마감 후 변경 n건" and the visits.
Report dayCloseReport(QStringView date, const QList<DayClose>& closes, const QList<Row>& changes);

/// Notes that the strip of the user's last close of the day was printed.
void noteStripPrinted(QStringView date, QStringView userId);

/// The strips of all kept closes of the day, user by user in their order; of a day that nobody has closed,
/// its figures without what was counted. An empty user stands for everybody. Nothing when they could not be
/// read to the end.
std::optional<QList<Report>> dayCloseReports(QStringView date, QStringView userId);

}  // namespace totals
