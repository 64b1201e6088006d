#include "db/Health.h"

#include <QFileInfo>
#include <algorithm>

#include "db/Schema.h"
#include "platform/Device.h"
#include "platform/adoce/DatabaseFile.h"

namespace db {

using namespace Qt::Literals::StringLiterals;

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
        if (!table.isRequired || file->sqlite().hasColumn(table.name)) continue;
        return u"%1 has no usable table %2 (%3); see: rovanactl check --device \"%4\""_s.arg(
            path, table.name, file->sqlite().errorText(), platform::device::folder());
    }
    return {};
}

bool needsUpgrade() {
    QString error;
    const auto file = platform::adoce::DatabaseFile::shared(
        platform::device::path(platform::device::kDatabaseFile), &error);
    // A later build adds columns at a table's end only, so the last one decides.
    return file && !std::ranges::all_of(schema::tables(), [&](const schema::Table& table) {
               return file->sqlite().hasColumn(table.name, table.columns.back());
           });
}

}  // namespace db
