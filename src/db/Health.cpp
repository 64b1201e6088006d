#include "db/Health.h"

#include <sqlite3.h>

#include <QFileInfo>

#include "db/Schema.h"
#include "platform/Device.h"
#include "platform/adoce/DatabaseFile.h"

namespace db {
namespace {

using namespace Qt::Literals::StringLiterals;

bool hasTable(sqlite3* handle, const schema::Table& table) {
    return sqlite3_table_column_metadata(handle, nullptr, table.name.toUtf8().constData(), nullptr, nullptr,
                                         nullptr, nullptr, nullptr, nullptr) == SQLITE_OK;
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
        if (!table.isRequired || hasTable(file->handle(), table)) continue;
        return u"%1 has no usable table %2 (%3); see: rovanactl check --device \"%4\""_s.arg(
            path, table.name, file->errorText(), platform::device::folder());
    }
    return {};
}

}  // namespace db
