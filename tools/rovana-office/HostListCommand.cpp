#include <QSet>
#include <array>

#include "platform/Csv.h"
#include "platform/Digits.h"
#include "platform/WholeFile.h"
#include "rovana-office/Command.h"
#include "rovana-office/Database.h"

namespace office {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::array<QStringView, 3> kColumns{u"number", u"time", u"amount"};

/// What is wrong with a line of the list; empty when nothing is.
QString faultOf(const QStringList& row) {
    if (row[0].isEmpty()) return u"has no transaction number"_s;
    if (!row[1].isEmpty() && (row[1].size() != 6 || !platform::areDigits(row[1])))
        return u"has no time hhmmss"_s;
    if (!platform::areDigits(row[2]) || row[2].size() > 15) return u"has no amount in won"_s;
    return {};
}

QList<platform::CsvRow> readList(const QString& path) {
    QString error;
    const auto content = platform::readWholeFile(path, &error);
    if (!content) throw Fault(u"%1 cannot be read: %2"_s.arg(path, error));
    QList<platform::CsvRow> rows;
    error = platform::readCsvRows(*content, u"the host's list", kColumns, &rows);
    if (!error.isEmpty()) throw Fault(path + u": "_s + error);
    QSet<QString> numbers;
    for (const auto& [line, row] : rows) {
        QString fault = faultOf(row);
        if (fault.isEmpty() && numbers.contains(row[0])) fault = u"has a number that stands there twice"_s;
        if (!fault.isEmpty()) throw Fault(u"%1: line %2 %3"_s.arg(path).arg(line).arg(fault));
        numbers << row[0];
    }
    return rows;
}

Outcome hostList(const Invocation& call) {
    const auto day = tools::dateArgument(call.arguments[0]);
    if (!day) return usageError(u"a day is written such as 2026-11-21, not \"%1\""_s.arg(call.arguments[0]));
    const QList<platform::CsvRow> rows = readList(call.arguments[1]);
    std::array<QStringList, kColumns.size()> columns;
    for (const platform::CsvRow& row : rows) {
        for (std::size_t i = 0; i < columns.size(); ++i) columns[i] << row.texts[qsizetype(i)];
    }
    const Connection connection = connectToOffice();
    pqxx::work work(*connection);
    const std::string date = plain(*day);
    work.exec_params(
        "INSERT INTO office.host_list (day) VALUES ($1) ON CONFLICT (day) DO UPDATE SET "
        "loaded_at = now(), loaded_by = session_user",
        date);
    work.exec_params("DELETE FROM office.host_payment WHERE day = $1", date);
    work.exec_params(
        "INSERT INTO office.host_payment (day, number, paid_at, amount) SELECT $1::date, number, paid_at, "
        "amount::bigint FROM unnest($2::text[], $3::text[], $4::text[]) AS list (number, paid_at, amount)",
        date, textArray(columns[0]), textArray(columns[1]), textArray(columns[2]));
    work.commit();
    call.out << u"%1: %2 payments of the card host\n"_s.arg(call.arguments[0]).arg(rows.size());
    return {};
}

}  // namespace

constinit const Command kHostListCommand{u"host-list",
                                         u"DATE FILE.csv",
                                         u"loads the card host's approved payments of a day",
                                         u"The file's first line names the columns number (the "
                                         u"transaction's), time (hhmmss, may be empty) and amount.\n"
                                         u"It replaces what was loaded of that day. \"day\" and the view "
                                         u"report.approval set it against the slips.",
                                         2,
                                         2,
                                         nullptr,
                                         hostList};

}  // namespace office
