#include <pqxx/pqxx>

#include "rovana-office/Command.h"
#include "rovana-office/Database.h"
#include "rovana-office/Migrations.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Makes the chosen database when the server has none of that name; nothing when it cannot be asked.
void createWhenMissing(const QString& name) {
    const Connection connection = connect(u"postgres"_s);
    pqxx::nontransaction work(*connection);
    if (!work.exec_params("SELECT FROM pg_database WHERE datname = $1", plain(name)).empty()) return;
    // C has the order of C.UTF-8, that of the code points and of Hangul, and compares without asking the
    // library.
    work.exec("CREATE DATABASE " + work.quote_name(plain(name)) +
              " TEMPLATE template0 ENCODING 'UTF8' LC_COLLATE 'C' LC_CTYPE 'C.UTF-8'");
}

Connection connectOrCreate() {
    try {
        return connect();
    } catch (const pqxx::broken_connection&) {
        createWhenMissing(connectionSetting(u"dbname"));
        return connect();
    }
}

Outcome init(const Invocation& call) {
    const Connection connection = connectOrCreate();
    const QString name = QString::fromUtf8(connection->dbname());
    const int before = migrate(*connection);
    if (before == newestSchema()) {
        call.out << u"nothing to do: %1 is an office of schema %2 already\n"_s.arg(name).arg(before);
    } else {
        call.out << u"%1 is an office now, schema %2\n"_s.arg(name).arg(newestSchema());
    }
    return {};
}

Outcome upgrade(const Invocation& call) {
    const Connection connection = connect();
    if (schemaOf(*connection) == 0) requireNewestSchema(*connection);
    const int before = migrate(*connection);
    if (before == newestSchema()) {
        call.out << u"nothing to do: the database has schema %1 already\n"_s.arg(before);
    } else {
        call.out << u"schema %1, was %2\n"_s.arg(newestSchema()).arg(before);
    }
    return {};
}

}  // namespace

constinit const Command kInitCommand{
    u"init",
    u"",
    u"makes the office's database, roles and tables",
    u"The database is made where the server has none of that name; it must be in UTF-8. Run by a role that\n"
    u"may make roles and databases. Done twice, the second time finds nothing to do.",
    0,
    0,
    nullptr,
    init};

constinit const Command kUpgradeCommand{
    u"upgrade",
    u"",
    u"gives the database of an older program what it lacks",
    u"All that came later is made in one transaction, or nothing. A database of a newer program is refused.",
    0,
    0,
    nullptr,
    upgrade};

}  // namespace office
