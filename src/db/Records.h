#pragma once

#include <QList>
#include <array>
#include <optional>

#include "db/Query.h"
#include "db/Statement.h"
#include "db/Transaction.h"

/// Records whose texts are the columns of a table, listed once for each record.
namespace db {

/// The members that hold the columns, in the table's order.
template <typename Record, std::size_t Count>
using Columns = std::array<QString Record::*, Count>;

/// The statement with the record's columns as its values, and behind them the texts `more`.
template <typename Statement, typename Record, std::size_t Count, typename... More>
Sql withColumns(const Statement& statement, const Columns<Record, Count>& columns, const Record& record,
                const More&... more) {
    static_assert(Count + sizeof...(More) == Statement::kValues);
    std::array<QStringView, Statement::kValues> values;
    for (std::size_t i = 0; i < Count; ++i) values[i] = record.*columns[i];
    std::size_t next = Count;
    ((values[next++] = more), ...);
    return statement(values);
}

/// The rows that `select` gives in the record's columns; nothing when they could not be read to the end.
template <typename Record, std::size_t Count>
std::optional<QList<Record>> selectRecords(const Sql& select, const Columns<Record, Count>& columns) {
    QList<Record> records;
    const int rows = forEachRow(select, [&](CVORecordset& row) {
        Record& record = records.emplaceBack();
        for (std::size_t i = 0; i < Count; ++i) record.*columns[i] = row.GetFieldString(int(i));
    });
    return rows < 0 ? std::nullopt : std::optional(records);
}

/// Inserts the records as part of `transaction`, with `more` behind the columns of each. One with a quote in
/// it is skipped. False when another did not get in: that is the database's failure.
template <typename Insert, typename Record, std::size_t Count, typename... More>
bool insertRecords(Transaction& transaction, const Insert& insert, const Columns<Record, Count>& columns,
                   const QList<Record>& records, const More&... more) {
    for (const Record& record : records) {
        const Sql statement = withColumns(insert, columns, record, more...);
        if (!transaction.run(statement) && statement.isWellFormed()) return false;
    }
    return true;
}

/// Replaces all rows of a working table by those that `select` gives in its columns. False, and the table
/// stays as it was, when the database does not take the change.
template <typename Insert, typename Record, std::size_t Count>
bool refill(const Sql& empty, const Sql& select, const Insert& insert,
            const Columns<Record, Count>& columns) {
    Transaction transaction(Survives::ProcessEnd);
    if (!transaction.run(empty)) return false;
    const auto records = selectRecords(select, columns);
    return records && insertRecords(transaction, insert, columns, *records) && transaction.commit();
}

}  // namespace db
