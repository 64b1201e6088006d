#include "rovana-office/Migrations.h"

#include <QDir>
#include <QFile>

#include "rovana-office/Database.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

struct Migration {
    int number;
    QString name;
};

/// By their numbers; 0 is what the administrator runs at each of them.
QList<Migration> migrations() {
    QList<Migration> all;
    for (const QString& name : QDir(u":/schema"_s).entryList({u"*.sql"_s}, QDir::Files, QDir::Name))
        all.append({name.first(3).toInt(), name});
    return all;
}

std::string textOfMigration(const Migration& migration) {
    QFile file(u":/schema/"_s + migration.name);
    if (!file.open(QIODevice::ReadOnly)) throw Fault(migration.name + u" is not in this program"_s);
    return file.readAll().toStdString();
}

int schemaIn(pqxx::transaction_base& work) {
    if (work.exec("SELECT to_regclass('office.migration')")[0][0].is_null()) return 0;
    return work.exec("SELECT coalesce(max(number), 0) FROM office.migration")[0][0].as<int>();
}

Fault newerThan(int version) {
    return Fault(u"the database is of a newer program (schema %1, this one knows %2)"_s.arg(version).arg(
        newestSchema()));
}

void requireServer(pqxx::transaction_base& work) {
    constexpr int kOldestServer = 150000;
    if (work.conn().server_version() < kOldestServer) throw Fault(u"PostgreSQL 15 or later is needed"_s);
    const QString encoding = textOf(work.exec("SHOW server_encoding")[0][0]);
    if (encoding != u"UTF8") throw Fault(u"the database is in %1; it must be in UTF8"_s.arg(encoding));
}

}  // namespace

int newestSchema() {
    return migrations().last().number;
}

int schemaOf(pqxx::connection& connection) {
    pqxx::work work(connection);
    return schemaIn(work);
}

int migrate(pqxx::connection& connection) {
    pqxx::work work(connection);
    requireServer(work);
    work.exec("SELECT pg_advisory_xact_lock(hashtext('office.migrate'))");
    const int before = schemaIn(work);
    if (before > newestSchema()) throw newerThan(before);
    for (const Migration& migration : migrations()) {
        if (migration.number > 0 && migration.number <= before) continue;
        try {
            if (migration.number > 0) work.exec("SET LOCAL ROLE rovana_owner");
            work.exec(textOfMigration(migration));
            work.exec("RESET ROLE");
        } catch (const pqxx::sql_error& fault) {
            throw Fault(migration.name + u": "_s + reasonOf(fault));
        }
        if (migration.number == 0) continue;
        work.exec_params("INSERT INTO office.migration (number, name, program_version) VALUES ($1, $2, $3)",
                         migration.number, plain(migration.name), ROVANA_VERSION);
    }
    work.commit();
    return before;
}

void requireNewestSchema(pqxx::connection& connection) {
    const int version = schemaOf(connection);
    if (version == newestSchema()) return;
    if (version > newestSchema()) throw newerThan(version);
    if (version == 0) {
        throw Fault(u"the database %1 is no office yet; \"rovana-office init\" makes it one"_s.arg(
            QString::fromUtf8(connection.dbname())));
    }
    throw Fault(
        u"the database has schema %1, this program needs %2; \"rovana-office upgrade\" brings it there"_s
            .arg(version)
            .arg(newestSchema()));
}

}  // namespace office
