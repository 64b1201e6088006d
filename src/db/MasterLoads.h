#pragma once

#include <QDate>
#include <QList>
#include <QString>
#include <QStringView>

#include "db/ImportFile.h"
#include "db/Transaction.h"

/// What is remembered of the file that a master table was loaded from last.
namespace db {

/// True when the table of a file that only the office writes (products, prices, margins) was loaded from the
/// very content with that digest. Whether it still has as many rows as that has lines is for the caller.
bool holdsContent(const ImportFile& file, const QString& digest);

/// Remembers the file that the table was loaded from, as part of the transaction: its content's digest (empty
/// when the table does not hold all of it) and the time of its last change in milliseconds since 1970.
void rememberLoad(const ImportFile& file, const QString& digest, qint64 modified, Transaction& transaction);

/// Rows of the file's table; nothing when they cannot be counted.
std::optional<int> countRows(const ImportFile& file);

/// Master data that the salesman should not trust.
struct OldData {
    QStringView fileName;
    int days = 0;  ///< Since prices came last; 0 for a file older than the one before it.
};

/// Tables whose file was of an earlier day than one loaded before, and prices that came last more than seven
/// days before `today`. A table that was never loaded is not named.
QList<OldData> oldMasterData(QDate today);

}  // namespace db
