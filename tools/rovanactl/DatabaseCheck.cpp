#include "rovanactl/DatabaseCheck.h"

#include <QStringBuilder>

#include "db/Schema.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

QStringList firstColumn(SqliteFile& database, const QString& statement, QStringView value) {
    QStringList texts;
    if (const auto rows = database.rows(statement, {value.toString()})) {
        for (const QStringList& row : *rows) texts << row.first();
    }
    return texts;
}

}  // namespace

QString findDamage(SqliteFile& database) {
    const auto found = database.rows(u"PRAGMA integrity_check"_s);
    if (!found || found->isEmpty()) return database.errorText();
    const QString first = found->first().first();
    return first == u"ok" ? QString() : first.section(u'\n', 0, 0);
}

QList<Departure> findDepartures(SqliteFile& database) {
    QList<Departure> departures;
    for (const db::schema::Table& table : db::schema::tables()) {
        const QStringList columns =
            firstColumn(database, u"SELECT name FROM pragma_table_info(?)"_s, table.name);
        if (columns.isEmpty()) {
            departures << Departure{u"the table %1 is missing"_s.arg(table.name),
                                    db::schema::createStatement(table), u"table "_s % table.name};
            continue;
        }
        QStringList expected;
        for (const QStringView column : table.columns) expected << column.toString();
        const auto areFirst = [&](const QStringList& some) {
            return some.join(u',').compare(expected.first(some.size()).join(u','), Qt::CaseInsensitive) == 0;
        };
        if (columns.size() > expected.size() || !areFirst(columns)) {
            departures << Departure{
                u"the columns of %1 are not %2, in that order"_s.arg(table.name, expected.join(u", "_s)),
                {},
                {}};
            continue;
        }
        // A later build adds columns at the end of a table, because rows are read by position.
        for (const QString& column : expected.sliced(columns.size())) {
            departures << Departure{u"the column %1 of %2 is missing"_s.arg(column, table.name),
                                    u"ALTER TABLE %1 ADD COLUMN %2 TEXT;"_s.arg(table.name, column),
                                    u"column %1.%2"_s.arg(table.name, column)};
        }
    }
    for (const db::schema::Index& index : db::schema::indexes()) {
        const QStringList columns =
            firstColumn(database, u"SELECT name FROM pragma_index_info(?) ORDER BY seqno"_s, index.name);
        if (index.columns.compare(columns.join(u", "_s), Qt::CaseInsensitive) == 0) continue;
        departures << Departure{
            u"the index %1 is missing or another; searches are slow"_s.arg(index.name),
            u"DROP INDEX IF EXISTS %1; "_s.arg(index.name) % db::schema::createStatement(index),
            u"index "_s % index.name};
    }
    return departures;
}

std::optional<int> tablesVersion(SqliteFile& database) {
    const auto found = database.rows(u"PRAGMA user_version"_s);
    return found && !found->isEmpty() ? std::optional(found->first().first().toInt()) : std::nullopt;
}

QString findNewer(SqliteFile& database) {
    const int version = tablesVersion(database).value_or(0);
    if (version <= db::schema::kVersion) return {};
    return u"a newer Rovana made it (its tables have version %1, this one knows %2); use the newer one's "
           "rovanactl"_s.arg(version)
               .arg(db::schema::kVersion);
}

QString completeTables(SqliteFile& database) {
    const QList<Departure> departures = findDepartures(database);
    if (departures.isEmpty() && tablesVersion(database) == db::schema::kVersion) return {};
    QString script = u"BEGIN IMMEDIATE;"_s;
    for (const Departure& departure : departures) {
        if (departure.repair.isEmpty()) return departure.text;
        script += departure.repair;
    }
    script += u"PRAGMA user_version=%1;"_s.arg(db::schema::kVersion);
    if (database.execute(script) && database.execute(u"COMMIT"_s)) return {};
    const QString error = database.errorText();
    database.execute(u"ROLLBACK"_s);
    return error;
}

QString findHopeless(SqliteFile& database) {
    if (const QString damage = findDamage(database); !damage.isEmpty()) return damage;
    qsizetype missing = 0;
    for (const Departure& departure : findDepartures(database)) {
        if (departure.repair.isEmpty()) return departure.text;
        if (departure.repair.startsWith(u"CREATE TABLE")) ++missing;
    }
    return missing == qsizetype(db::schema::tables().size()) ? u"it holds no table of a terminal"_s
                                                             : QString();
}

}  // namespace admin
