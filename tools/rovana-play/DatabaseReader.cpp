#include "rovana-play/DatabaseReader.h"

#include "platform/Device.h"
#include "platform/Sqlite.h"

namespace pilot {

using namespace Qt::Literals::StringLiterals;

ReadValue readValue(const QString& select) try {
    platform::SqliteFile database(platform::device::path(platform::device::kDatabaseFile),
                                  platform::SqliteFile::Mode::ReadOnly);
    if (!database.isOpen()) return {{}, database.errorText()};
    platform::SqliteStatement statement = database.statement(select.toUtf8());
    if (statement.columns() == 0) return {{}, u"not a SELECT"_s};
    return {statement.step() ? statement.text(0) : QString(), {}};
} catch (const platform::SqliteError& error) {
    return {{}, QString::fromUtf8(error.what())};
}

}  // namespace pilot
