#include "db/Health.h"

#include <sqlite3.h>

#include <QFileInfo>
#include <algorithm>

#include "db/Schema.h"
#include "platform/Device.h"
#include "platform/adoce/DatabaseFile.h"

namespace db {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Whether the table is there, and in it the column unless that is empty.
bool has(sqlite3* handle, const schema::Table& table, QStringView column = {}) {
    const QByteArray name = column.toUtf8();
    return sqlite3_table_column_metadata(handle, nullptr, table.name.toUtf8().constData(),
                                         column.isEmpty() ? nullptr : name.constData(), nullptr, nullptr,
                                         nullptr, nullptr, nullptr) == SQLITE_OK;
}

}  // namespace

QString databaseProblem() {
    const QString path = platform::device::path(platform::device::kDatabaseFile);
    if (!QFileInfo::exists(path)) {
        return u"%1 is missing; make a terminal with: rovanactl init \"%2\" (add --demo for one to try)"_s
            .arg(path, platform::device::folder());
    }
    QString error;
    const auto file = platform::adoce::DatabaseFile::shared(path, &error);
    if (!file) return u"%1; see: rovanactl check --device \"%2\""_s.arg(error, platform::device::folder());
    for (const schema::Table& table : schema::tables()) {
        if (!table.isRequired || has(file->handle(), table)) continue;
        return u"%1 has no usable table %2 (%3); see: rovanactl check --device \"%4\""_s.arg(
            path, table.name, file->errorText(), platform::device::folder());
    }
    return {};
}

bool needsUpgrade() {
    QString error;
    const auto file = platform::adoce::DatabaseFile::shared(
        platform::device::path(platform::device::kDatabaseFile), &error);
    // A later build adds columns at a table's end only, so the last one tells.
    return file && !std::ranges::all_of(schema::tables(), [&](const schema::Table& table) {
               return has(file->handle(), table, table.columns.back());
           });
}

}  // namespace db
