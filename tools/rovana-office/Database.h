#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <exception>
#include <memory>
#include <pqxx/pqxx>
#include <stdexcept>
#include <string>

/// The connection to the office's database. Whatever fails throws; reasonOf() words it.
namespace office {

/// What is wrong with the database or with what was asked of it, in words for the administrator.
class Fault : public std::runtime_error {
  public:
    explicit Fault(const QString& reason) : std::runtime_error(reason.toStdString()) {}
};

/// Takes how the commands reach the database (libpq's connection string or address). Returns what is wrong
/// with it: unreadable, or a password in it; empty when nothing is.
QString chooseDatabase(const QString& connection);

/// Its name, and one setting of it as libpq would use it.
QString connectionSetting(QStringView name);

using Connection = std::unique_ptr<pqxx::connection>;

/// A connection to the chosen database, or to `database` on the same server.
Connection connect(const QString& database = {});

/// The same, refused unless the database has the very schema of this program.
Connection connectToOffice();

/// One line without the statement it happened in.
QString reasonOf(const std::exception& fault);

/// A column of texts as the parameter for "$1::text[]".
std::string textArray(const QStringList& texts);

QString textOf(const pqxx::field& field);
std::string plain(QStringView text);

/// One bytea parameter's text.
std::string byteaText(const QByteArray& bytes);

}  // namespace office
