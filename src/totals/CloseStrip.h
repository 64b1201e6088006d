#pragma once

#include <QString>
#include <QStringView>
#include <optional>

#include "books/Deletions.h"
#include "books/PaymentJournal.h"
#include "books/Visit.h"
#include "totals/DayClose.h"
#include "totals/Report.h"

/// The strip of a close, and the text that keeps it.
namespace totals {

/// What a close is made of: a user's day as it stands, or everybody's.
struct Day {
    QString date;
    QString userId;
    QList<books::Visit> visits;
    QList<books::Deletion> deletions;
    QList<books::JournalPayment> openPayments;  ///< Of that day and those before it.
    DayFigures figures;
};

/// Reads a day; an empty user stands for everybody. Nothing when it could not be read to the end.
std::optional<Day> readDay(QStringView date, QStringView userId);

/// The strip of the day's figures, without what was counted.
Report dayStrip(QStringView title, const Day& day);

/// Adds to a strip what was counted, before and now, and when that was.
void addCount(Report* strip, QStringView date, const QList<DayClose>& before, const DayClose& close);

/// A strip of an older terminal's close, which kept its figures alone.
Report stripOfFigures(QStringView title, QStringView date, QStringView userId, const DayFigures& figures);

/// The strip as one text without a single quote, and back; nothing where the text is none.
QString toText(const Report& strip);
std::optional<Report> fromText(QStringView text, QStringView date);

/// The visits of the day and what stands under each, as one text without a single quote, for changesSince.
QString fingerprint(const QList<books::Visit>& visits);

/// Which visits differ from those of a close, with what they come to now: those that changed, came, or went,
/// and those that were deleted since. The close kept `fingerprint` and the number of deletions until then.
QList<Row> changesSince(QStringView fingerprint, std::int64_t deletions, const Day& day);

}  // namespace totals
