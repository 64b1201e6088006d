#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <utility>

namespace admin {

/// What is to leave the terminal.
struct ArchiveOrder {
    QString before;             ///< "yyyy-MM-dd"; days before it leave.
    bool alsoUnclosed = false;  ///< Else the days that every user with slips has closed.
};

struct ArchiveResult {
    QString error;                         ///< Empty when it is done; else nothing has left.
    QList<std::pair<QString, int>> moved;  ///< Tables, and how many of their rows left.
    qsizetype carried = 0;                 ///< Rows of `CONTAINERCARRY` now.
    QStringList unclosedDays;              ///< That stay, each with its users.
    QStringList visits;                    ///< That stay although their day leaves: date and number.
    bool wasThere = false;                 ///< The archive was whole already, from a run that was stopped.
};

/// Moves the visits of old days (sales, collections, containers, payments and notes of prints) from the
/// database `from`, which no other process may have open, into the new file `to`, a database of the same
/// tables that holds them alone and the closes of their days. Whole visits stay that have a payment which is
/// still open, or was made from that day on, and orders that nobody has delivered. The archive is on the disk
/// whole before anything leaves; stopped between the two, the same call finds it and goes on.
ArchiveResult archiveSlips(const QString& from, const QString& to, const ArchiveOrder& order);

}  // namespace admin
