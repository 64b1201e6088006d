#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <optional>

#include "books/VisitChecks.h"
#include "totals/Report.h"

/// The visits whose goods, containers, collection and payments do not agree, as a report.
namespace totals {

struct VisitCheck {
    Report report;
    /// For each row of the report's list the visit that it shows; nothing for a row that is a title.
    QList<std::optional<books::Visit>> rows;
    /// And what the list says below the row.
    struct Note {
        QString reason;
        QString amounts;  ///< As both sides have them; empty where there is one side only.
    };
    QList<Note> notes;

    bool isEmpty() const { return rows.isEmpty(); }
};

/// Checks the user's visits of those days, or with an empty id everybody's. Nothing when they could not be
/// read to the end.
std::optional<VisitCheck> checkDays(const QStringList& days, QStringView userId);

}  // namespace totals
