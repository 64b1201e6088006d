#include <QFile>
#include <QFileInfo>

#include "db/Schema.h"
#include "platform/Device.h"
#include "rovanactl/Command.h"
#include "rovanactl/DatabaseCheck.h"
#include "rovanactl/DatabaseCopy.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

Outcome upgrade(const Invocation& call) {
    const QString path = platform::device::path(platform::device::kDatabaseFile);
    if (!QFileInfo::exists(path)) {
        return failure(u"there is no database %1; name the device folder with --device"_s.arg(path));
    }
    SqliteFile database(path, SqliteFile::Mode::Existing);
    const auto refusal = [&](const QString& why) {
        return failure(u"%1 is not upgraded: %2"_s.arg(path, why));
    };
    const std::optional<int> version = tablesVersion(database);
    if (!version) return refusal(database.errorText());
    if (const QString newer = findNewer(database); !newer.isEmpty()) return refusal(newer);
    if (const QString fault = findHopeless(database); !fault.isEmpty()) {
        return refusal(u"%1; \"rovanactl check\" tells more"_s.arg(fault));
    }
    const QList<Departure> departures = findDepartures(database);
    if (departures.isEmpty() && *version == db::schema::kVersion) {
        call.out << u"nothing to do: the tables have version %1 already\n"_s.arg(*version);
        return {};
    }
    // A terminal that is open goes on with the tables that it found.
    if (database.lock() != SqliteFile::Lock::Held) return failure(describeUse(path));
    const CopyResult kept = keepBeside(database, path);
    if (!kept.error.isEmpty()) return refusal(u"it cannot be kept: "_s + kept.error);
    if (const QString error = completeTables(database); !error.isEmpty()) {
        QFile::remove(kept.kept);
        return refusal(error);
    }
    const auto tell = [&](const QString& what, const QString& done) {
        call.out << what.leftJustified(32) << done << u'\n';
    };
    for (const Departure& departure : departures) tell(departure.subject, u"made"_s);
    tell(u"version of the tables"_s, u"%1, was %2"_s.arg(db::schema::kVersion).arg(*version));
    tell(u"database as it was"_s, kept.kept);
    return {};
}

}  // namespace

constinit const Command kUpgradeCommand{
    u"upgrade",
    u"",
    u"gives the database of an older build what it lacks",
    u"Makes the tables, columns and indexes that came later, all of them or none; no row changes. The "
    u"database\n"
    u"as it was stays beside, with the time in its name. Done twice, the second time finds nothing to do.\n"
    u"Refused while a terminal has the database open, and for a database of a newer build.",
    0,
    0,
    nullptr,
    upgrade};

}  // namespace admin
