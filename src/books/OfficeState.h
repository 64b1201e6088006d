#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QString>

#include "books/Documents.h"

/// What the terminal knows of the office: the sync keeps it in a small file of the device folder, and the
/// menu reads it. The terminal itself never talks to the office.
namespace books {

using DocumentDigests = QMap<DocumentIdentity, QByteArray>;

/// Where the office's access and the sync's files lie.
inline constexpr QStringView kOfficeAccessFile = u"\\office.conf";
inline constexpr QStringView kOfficeFolder = u"\\office\\";

struct OfficeState {
    struct Day {
        QByteArray digest;         ///< Of the day as it was agreed with the office.
        QList<QByteArray> agreed;  ///< The documents' short digests; of the newest days alone.
        int waiting = 0;           ///< Visits that the last sync has left unsent.
    };
    QDateTime syncedAt;  ///< When the office was reached last; invalid before the first time.
    QMap<QString, Day> days;
};

/// The first bytes of a digest, enough to tell a terminal's documents apart.
QByteArray shortDigest(const QByteArray& digest);

/// False when the terminal has no office.
bool hasOffice();

/// The state; empty where there is none yet or it cannot be read.
OfficeState readOfficeState();

/// False when it could not be written.
bool writeOfficeState(const OfficeState& state);

/// The day's documents with their digests.
DocumentDigests digestsOfDay(const DocumentReader& reader, const QString& date);

/// The visits among the documents that differ from what was agreed; 1 when only something that has gone, or a
/// payment, does.
int waitingVisits(const OfficeState::Day& agreed, const DocumentDigests& documents);

/// "사무실 14:05 · 대기 3" for the menu: when the office was reached last, with the day where that was not
/// today, and how many visits it does not have, those of `workDate` counted now. Empty without an office.
QString officeLine(const QString& workDate);

}  // namespace books
