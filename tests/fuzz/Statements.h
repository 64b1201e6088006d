#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringView>
#include <span>

#include "db/Statement.h"

namespace fuzz {

/// One statement of the system.
struct SystemStatement {
    QStringView format;
    int values;
    db::Sql (*make)(std::span<const QString> values);
};

/// Every statement in the sources.
std::span<const SystemStatement> systemStatements();

/// Throws when these values change what the statement does, or do not arrive as they are.
void checkValues(const SystemStatement& statement, std::span<const QString> values);

/// Gives any text to the database component, lets it do nothing but read and change rows, and takes that
/// back. Returns what SQLite ran, parameters as "?".
QList<QByteArray> runText(const QString& text);

}  // namespace fuzz
