#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace db {

/// Runs a SELECT with a text for each "?" on every database of old slips that lies with the documents or on
/// the storage card, and calls `readRow` on the file's path and each of its rows. Files may hold the same
/// slip. One that cannot be read is passed over, and traced.
void forEachArchivedRow(const QString& select, const QStringList& values,
                        const std::function<void(const QString& file, const QStringList& row)>& readRow);

}  // namespace db
