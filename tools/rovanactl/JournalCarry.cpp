#include "rovanactl/JournalCarry.h"

#include <algorithm>

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kNumber = 0;
constexpr int kState = 1;

bool isOpen(QStringView state) {
    return state == u"sent" || state == u"unknown";
}

bool carry(const QStringList& row, SqliteFile& to) {
    const QString& number = row[kNumber];
    const auto there = to.rows(u"SELECT State FROM PAYJOURNAL WHERE Number = ?"_s, {number});
    if (!there) return false;
    const bool isAskedAgain = std::ranges::any_of(*there, [](const auto& each) { return isOpen(each[0]); });
    if (isAskedAgain && row[kState] == u"approved") return true;
    // An older copy lacks the columns at the table's end.
    const auto names = to.rows(u"SELECT name FROM pragma_table_info('PAYJOURNAL')"_s);
    if (!names) return false;
    const qsizetype columns = std::min(row.size(), names->size());
    QStringList into;
    for (const auto& name : names->first(columns)) into << name.first();
    const QStringList places(columns, u"?"_s);
    return to.rows(u"DELETE FROM PAYJOURNAL WHERE Number = ?"_s, {number}) &&
           to.rows(u"INSERT INTO PAYJOURNAL (%1) VALUES (%2)"_s.arg(into.join(u','), places.join(u',')),
                   row.first(columns));
}

}  // namespace

bool hasPayments(SqliteFile& database) {
    const auto first = database.rows(u"SELECT Number FROM PAYJOURNAL LIMIT 1"_s);
    return first && !first->isEmpty();
}

QString carryPayments(SqliteFile& from, SqliteFile& to) {
    const auto payments = from.rows(u"SELECT * FROM PAYJOURNAL WHERE State <> 'prepared' ORDER BY rowid"_s);
    if (payments && to.execute(u"BEGIN IMMEDIATE"_s)) {
        if (std::ranges::all_of(*payments, [&](const QStringList& row) { return carry(row, to); }) &&
            to.execute(u"COMMIT"_s)) {
            return {};
        }
    }
    const QString error =
        u"the payments cannot be carried over: %1"_s.arg((payments ? to : from).errorText());
    to.execute(u"ROLLBACK"_s);
    return error;
}

}  // namespace admin
