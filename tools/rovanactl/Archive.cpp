#include "rovanactl/Archive.h"

#include <QFile>
#include <QFileInfo>
#include <QStringBuilder>
#include <algorithm>

#include "books/ContainerCarry.h"
#include "books/UndeliveredOrders.h"
#include "db/Schema.h"
#include "rovanactl/DatabaseCheck.h"
#include "rovanactl/DatabaseCopy.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QStringView kTables[] = {u"MTM", u"MTMOK", u"YTM", u"PAYJOURNAL", u"PRINTLOG"};
/// What nobody reads in an archive.
constexpr QStringView kLeftOut[] = {u"TEMP",       u"YTEMP",         u"GARAEDANGA", u"GARAEMAJIN",
                                    u"MASTERLOAD", u"IMPORTREJECT",  u"IMPORTLOG",  u"UNSAVED",
                                    u"KEPTSALE",   u"KEPTCONTAINERS"};

/// The condition for a row of the table to leave.
QString leaves(QStringView table) {
    const QString visit =
        u"EXISTS (SELECT 1 FROM temp.leaving WHERE leaving.DDate = %1.DDate AND leaving.JunNo = %1.JunNo)"_s
            .arg(table);
    return table == u"PAYJOURNAL"
               ? visit % u" AND PAYJOURNAL.rowid < (SELECT number FROM temp.stayingpayment)"_s
               : visit;
}

/// Makes the tables of what leaves and what stays in the connection's own memory. The same rows give the
/// same.
bool choose(SqliteFile& database, const ArchiveOrder& order) {
    QStringList visits;
    for (const QStringView table : kTables) visits << u"SELECT DDate, JunNo FROM main."_s % table;
    const QString time = QString(order.before).remove(u'-');
    const QString script =
        u"PRAGMA temp_store=MEMORY;"
        "CREATE TABLE temp.unclosed AS SELECT DISTINCT DDate, UserID FROM ("
        "SELECT DDate, UserID FROM main.MTM UNION SELECT DDate, UserID FROM main.MTMOK UNION "
        "SELECT DDate, UserID FROM main.YTM) AS slip WHERE DDate < '%1' AND NOT %2 AND NOT EXISTS ("
        "SELECT 1 FROM main.DAYCLOSE AS c WHERE c.DDate = slip.DDate AND "
        "(c.UserID = slip.UserID OR COALESCE(slip.UserID, '') = ''));"
        "CREATE TABLE temp.staying AS "
        "SELECT DDate, JunNo FROM main.PAYJOURNAL WHERE State IN ('sent', 'unknown') OR MSGSENDTIME >= '%3' "
        "UNION SELECT DDate, JunNo FROM main.MTMOK WHERE MSGSENDTIME >= '%3' "
        "UNION SELECT DDate, JunNo FROM (%5);"
        // A payment that never reaches the host is told from the one before it by that one's transaction
        // number: the last approved payment before the first open one stays, and all after it.
        "CREATE TABLE temp.stayingpayment AS SELECT COALESCE((SELECT MAX(rowid) FROM main.PAYJOURNAL "
        "WHERE State = 'approved' AND rowid < opened), opened) AS number FROM (SELECT COALESCE(MIN(rowid), "
        "(SELECT COALESCE(MAX(rowid), 0) + 1 FROM main.PAYJOURNAL)) AS opened FROM main.PAYJOURNAL "
        "WHERE State IN ('sent', 'unknown'));"
        "CREATE TABLE temp.old (DDate TEXT, JunNo TEXT, PRIMARY KEY (DDate, JunNo)) WITHOUT ROWID;"
        "INSERT INTO temp.old SELECT DDate, JunNo FROM (%4) WHERE DDate < '%1' AND JunNo IS NOT NULL "
        "AND DDate NOT IN (SELECT DDate FROM temp.unclosed);"
        "CREATE TABLE temp.leaving (DDate TEXT, JunNo TEXT, PRIMARY KEY (DDate, JunNo)) WITHOUT ROWID;"
        "INSERT INTO temp.leaving SELECT * FROM temp.old EXCEPT SELECT * FROM temp.staying;"_s.arg(
            order.before, order.alsoUnclosed ? u"1"_s : u"0"_s, time, visits.join(u" UNION "_s),
            books::UndeliveredOrders::selectBefore(order.before).text());
    return database.execute(script);
}

QStringList texts(SqliteFile& database, const QString& select) {
    QStringList found;
    database.forEachRow(select, {}, [&](const QStringList& row) {
        found << row.join(u' ');
        return true;
    });
    return found;
}

/// Leaves nothing in the copy but what leaves the terminal and what it takes to read that. What is wrong, or
/// nothing.
QString keepLeaving(SqliteFile& copy, const ArchiveOrder& order) {
    QString script = u"BEGIN IMMEDIATE;"_s;
    for (const QStringView table : kTables)
        script += u"DELETE FROM main.%1 WHERE NOT (%2);"_s.arg(table, leaves(table));
    script += u"DELETE FROM main.DAYCLOSE WHERE DDate NOT IN (SELECT DDate FROM temp.leaving);"_s;
    for (const QStringView table : kLeftOut) script += u"DELETE FROM main.%1;"_s.arg(table);
    const bool isKept =
        choose(copy, order) && copy.execute(script % u"COMMIT"_s) && copy.execute(u"VACUUM"_s);
    return isKept ? QString() : u"the archive cannot be made: "_s % copy.errorText();
}

/// Whether the archive `to` holds exactly what is to leave `database`.
bool holdsLeaving(SqliteFile& database, const QString& to) {
    if (!database.rows(u"ATTACH DATABASE ? AS kept"_s, {to})) return false;
    const auto isSame = [&](QStringView table) {
        const auto found = database.rows(
            u"SELECT (SELECT COUNT(*) FROM main.%1 WHERE %2) = (SELECT COUNT(*) FROM kept.%1) AND NOT EXISTS "
            "(SELECT * FROM main.%1 WHERE %2 EXCEPT SELECT * FROM kept.%1)"_s.arg(table, leaves(table)));
        return found && found->first().first() == u"1";
    };
    const bool isWhole = std::ranges::all_of(kTables, isSame);
    database.execute(u"DETACH DATABASE kept"_s);
    return isWhole;
}

/// What the containers of all that leaves, and of what left before, come to; nothing when it cannot be read.
std::optional<QList<QStringList>> carriedRows(SqliteFile& database, const QString& until) {
    books::ContainerCarry carry;
    const auto read = [&](const QString& select, const std::function<void(const QStringList&)>& add) {
        return database.forEachRow(select, {}, [&](const QStringList& row) {
            add(row);
            return true;
        });
    };
    const bool isRead =
        read(u"SELECT * FROM main.CONTAINERCARRY"_s,
             [&](const QStringList& row) { carry.addCarried(row); }) &&
        read(
            u"SELECT GCode, PCode, PName, FBox, NBox, Bon FROM main.YTM WHERE %1 ORDER BY DDate, rowid"_s.arg(
                leaves(u"YTM")),
            [&](const QStringList& row) {
                carry.addReturn(row[0], row[1], row[2], row[3], row[4], row[5]);
            }) &&
        read(u"SELECT GCode, PCode, PName, Box, Bon FROM main.MTM WHERE %1"_s.arg(leaves(u"MTM")),
             [&](const QStringList& row) { carry.addSale(row[0], row[1], row[2], row[3], row[4]); });
    return isRead ? std::optional(carry.rows(until)) : std::nullopt;
}

/// Takes what leaves out of the database, in one transaction. What is wrong, or nothing.
QString takeOut(SqliteFile& database, const QList<QStringList>& carried) {
    QString script;
    for (const QStringView table : kTables)
        script += u"DELETE FROM main.%1 WHERE %2;"_s.arg(table, leaves(table));
    // EXTRA, so that a loss of power right after it does not bring them back.
    bool isDone = database.execute(
        u"PRAGMA synchronous=EXTRA; BEGIN IMMEDIATE; DELETE FROM main.CONTAINERCARRY;"_s % script);
    for (const QStringList& row : carried) {
        isDone = isDone && database.rows(u"INSERT INTO main.CONTAINERCARRY VALUES (%1)"_s.arg(
                                             QStringList(row.size(), u"?"_s).join(u',')),
                                         row);
    }
    if (isDone && database.execute(u"COMMIT"_s)) return {};
    const QString error = database.errorText();
    database.execute(u"ROLLBACK"_s);
    return u"the slips stay in the terminal: "_s % error;
}

/// How many rows of each table are to leave; nothing when they cannot be counted.
std::optional<QList<std::pair<QString, int>>> countLeaving(SqliteFile& database) {
    QList<std::pair<QString, int>> counts;
    for (const QStringView table : kTables) {
        const auto counted =
            database.rows(u"SELECT COUNT(*) FROM main.%1 WHERE %2"_s.arg(table, leaves(table)));
        if (!counted) return std::nullopt;
        counts.append({table.toString(), counted->first().first().toInt()});
    }
    return counts;
}

/// Why the file cannot be made, or nothing.
QString refuse(SqliteFile& database, const QString& from, const QString& to) {
    const QFileInfo place(to);
    if (place.isDir()) return u"%1 is a folder; name a file in it"_s.arg(to);
    if (!place.absoluteDir().exists()) return u"there is no folder %1"_s.arg(place.absolutePath());
    if (place.exists() && place.canonicalFilePath() == QFileInfo(from).canonicalFilePath())
        return u"%1 is the database itself"_s.arg(to);
    if (const QString newer = findNewer(database); !newer.isEmpty()) return newer;
    if (tablesVersion(database) != db::schema::kVersion)
        return u"%1 is of an older version; \"rovanactl upgrade\" first"_s.arg(from);
    return {};
}

}  // namespace

ArchiveResult archiveSlips(const QString& from, const QString& to, const ArchiveOrder& order) {
    ArchiveResult result;
    SqliteFile database(from, SqliteFile::Mode::Existing);
    const auto fail = [&](const QString& error) {
        result.error = error;
        return result;
    };
    if (const QString why = refuse(database, from, to); !why.isEmpty()) return fail(why);
    switch (database.lock()) {
        case SqliteFile::Lock::Held: break;
        case SqliteFile::Lock::InUse: return fail(describeUse(from));
        case SqliteFile::Lock::Unusable:
            return fail(u"%1 cannot be read: %2"_s.arg(from, database.errorText()));
    }
    if (!choose(database, order)) return fail(database.errorText());
    result.unclosedDays =
        texts(database, u"SELECT DDate, GROUP_CONCAT(UserID) FROM temp.unclosed GROUP BY DDate"_s);
    result.visits = texts(database, u"SELECT * FROM temp.old INTERSECT SELECT * FROM temp.staying"_s);
    const auto moved = countLeaving(database);
    if (!moved) return fail(database.errorText());
    result.moved = *moved;
    if (std::ranges::all_of(*moved, [](const auto& each) { return each.second == 0; })) return result;
    const auto carried = carriedRows(database, order.before);
    if (!carried) return fail(database.errorText());
    result.carried = carried->size();

    const QString path = QFileInfo(to).absoluteFilePath();
    result.wasThere = QFileInfo::exists(path);
    if (result.wasThere && !holdsLeaving(database, path))
        return fail(u"%1 is there already and holds something else; name another file"_s.arg(to));
    if (!result.wasThere) {
        const QString error = copyEdited(database, path, QFileInfo(from).size(),
                                         [&](SqliteFile& copy) { return keepLeaving(copy, order); });
        if (!error.isEmpty()) return fail(error);
    }
    if (const QString error = takeOut(database, *carried); !error.isEmpty()) {
        // An error of the disk may come when it is done already: the archive goes only when it is not needed.
        const bool isNeeded = countLeaving(database) != moved;
        if (!result.wasThere && !isNeeded) QFile::remove(path);
        return fail(isNeeded ? u"%1; keep %2 and give the same command again"_s.arg(error, to) : error);
    }
    // The file gets smaller where there is room to write it anew; else new slips take the room.
    database.execute(u"VACUUM"_s);
    return result;
}

}  // namespace admin
