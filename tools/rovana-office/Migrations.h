#pragma once

#include <QString>
#include <pqxx/pqxx>

/// The numbered migrations of the office's database (office/schema), which this program carries.
namespace office {

/// The number of the last of them: the schema version that this program works with.
int newestSchema();

/// The schema version of the database; 0 for one that is no office yet.
int schemaOf(pqxx::connection& connection);

/// Brings the database to the newest schema: roles, schemas and all migrations that it lacks, in one
/// transaction; two who do so at once wait for each other. Returns the version before. Throws Fault for a
/// database of a newer program, an older server, or another encoding than UTF-8.
int migrate(pqxx::connection& connection);

/// Throws Fault unless the database has exactly the newest schema.
void requireNewestSchema(pqxx::connection& connection);

}  // namespace office
