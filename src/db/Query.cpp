#include "db/Query.h"

namespace db {

std::optional<QStringList> firstRow(const Sql& select) {
    CVOConnection connection;
    openDatabase(connection);
    CVORecordset recordset(connection);
    recordset.Open(select, kKeyset, kReadOnly);
    // Without a component EOF is false, so the result's own state is asked as well.
    if (!recordset.m_bOpen || recordset.EOF()) return std::nullopt;
    recordset.MoveFirst();
    QStringList columns;
    columns.reserve(recordset.m_nFieldCount);
    for (int i = 0; i < recordset.m_nFieldCount; ++i) columns.append(recordset.GetFieldString(i));
    return columns;
}

bool hasRow(const Sql& select) {
    return firstRow(select).has_value();
}

bool execute(const Sql& statement) {
    CVOConnection connection;
    openDatabase(connection);
    CVORecordset recordset(connection);
    return recordset.Open(statement, kForwardOnly, kReadOnly);
}

platform::Rows selectRows(const Sql& select, int columns) {
    platform::Rows rows{.columns = columns, .cells = {}};
    const int count = forEachRow(select, [&](CVORecordset& recordset) {
        for (int i = 0; i < columns; ++i) rows.cells.append(recordset.GetFieldString(i));
    });
    rows.isComplete = count >= 0;
    return rows;
}

}  // namespace db
