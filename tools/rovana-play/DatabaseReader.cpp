#include "rovana-play/DatabaseReader.h"

#include <sqlite3.h>

#include <memory>

#include "platform/Device.h"

namespace pilot {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kBusyTimeoutMs = 1000;

}  // namespace

ReadValue readValue(const QString& select) {
    const QString file = platform::device::path(platform::device::kDatabaseFile);
    sqlite3* opened = nullptr;
    const int openResult = sqlite3_open_v2(file.toUtf8().constData(), &opened, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, &sqlite3_close);
    const auto failed = [&] { return ReadValue{{}, QString::fromUtf8(sqlite3_errmsg(opened))}; };
    if (openResult != SQLITE_OK) return failed();
    sqlite3_busy_timeout(opened, kBusyTimeoutMs);

    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(opened, select.toUtf8().constData(), -1, &prepared, nullptr) != SQLITE_OK)
        return failed();
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(prepared, &sqlite3_finalize);
    if (prepared == nullptr || sqlite3_column_count(prepared) == 0) return {{}, u"not a SELECT"_s};
    const int result = sqlite3_step(prepared);
    if (result == SQLITE_DONE) return {};
    if (result != SQLITE_ROW) return failed();
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0));
    return {QString::fromUtf8(text, sqlite3_column_bytes(prepared, 0)), {}};
}

}  // namespace pilot
