#pragma once

#include <array>

#include "db/Query.h"
#include "db/Statement.h"
#include "db/Transaction.h"

/// Records whose texts are the columns of a table, listed once for each record.
namespace db {

/// The members that hold the columns, in the table's order.
template <typename Record, std::size_t Count>
using Columns = std::array<QString Record::*, Count>;

/// The statement with the record's columns as its values.
template <typename Statement, typename Record, std::size_t Count>
Sql withColumns(const Statement& statement, const Columns<Record, Count>& columns, const Record& record) {
    static_assert(Count == Statement::kValues);
    std::array<QStringView, Count> values;
    for (std::size_t i = 0; i < Count; ++i) values[i] = record.*columns[i];
    return statement(values);
}

/// Replaces all rows of a working table by those that `select` gives in its columns. False, and the table
/// stays as it was, when the database does not take the change.
template <typename Insert, typename Record, std::size_t Count>
bool refill(const Sql& empty, const Sql& select, const Insert& insert,
            const Columns<Record, Count>& columns) {
    Transaction transaction(Survives::ProcessEnd);
    bool isWhole = transaction.run(empty);
    const int rows = forEachRow(select, [&](CVORecordset& row) {
        Record record;
        for (std::size_t i = 0; i < Count; ++i) record.*columns[i] = row.GetFieldString(int(i));
        const Sql statement = withColumns(insert, columns, record);
        // A row with a quote in it is skipped; any other failure is the database's.
        if (!transaction.run(statement) && statement.isWellFormed()) isWhole = false;
    });
    return isWhole && rows >= 0 && transaction.commit();
}

}  // namespace db
