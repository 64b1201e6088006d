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
                                    createTableStatement(table.name)};
            continue;
        }
        QStringList expected;
        for (const QStringView column : table.columns) expected << column.toString();
        if (columns.join(u',').compare(expected.join(u','), Qt::CaseInsensitive) != 0) {
            departures << Departure{
                u"the columns of %1 are not %2, in that order"_s.arg(table.name, expected.join(u", "_s)), {}};
        }
    }
    for (const db::schema::Index& index : db::schema::indexes()) {
        const QStringList columns =
            firstColumn(database, u"SELECT name FROM pragma_index_info(?) ORDER BY seqno"_s, index.name);
        if (index.columns.compare(columns.join(u", "_s), Qt::CaseInsensitive) == 0) continue;
        departures << Departure{
            u"the index %1 is missing or another; searches are slow"_s.arg(index.name),
            u"DROP INDEX IF EXISTS %1; "_s.arg(index.name) % createIndexStatement(index.name)};
    }
    return departures;
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
