#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "db/VOConnection.h"
#include "db/VORecordset.h"
#include "platform/Device.h"
#include "platform/Rows.h"

/// The pattern that every operation of the system follows: a connection of its own, one statement, its rows.
namespace db {

/// Opens `connection` on the terminal's database file.
inline void openDatabase(CVOConnection& connection) {
    connection.Open(u" ", platform::device::kDatabaseFile);
}

/// Runs a SELECT on a connection of its own and calls `readRow(recordset)` on each row. Returns the number of
/// rows, -1 when the statement failed or its rows broke off.
template <typename ReadRow>
int forEachRow(const Sql& select, ReadRow&& readRow) {
    CVOConnection connection;
    openDatabase(connection);
    CVORecordset recordset(connection);
    recordset.Open(select, kKeyset, kReadOnly);
    int rows = 0;
    // Without a component EOF is false, so the result's own state is asked as well.
    for (; recordset.m_bOpen && !recordset.EOF(); recordset.MoveNext(), ++rows) readRow(recordset);
    return recordset.IsBroken() ? -1 : rows;
}

/// The first row's columns as texts; nothing when there is no row or the statement failed.
std::optional<QStringList> firstRow(const Sql& select);

/// The first `columns` columns of every row of the SELECT, on a connection of its own; no rows when the
/// statement failed.
platform::Rows selectRows(const Sql& select, int columns);

/// The same rows a piece at a time, so that a long list shows its first ones before the last are read. What
/// is left when something here is about to change the database is read before: no change meets a reading.
platform::RowSource selectPieces(const Sql& select, int columns);

/// Reads what selectPieces has left.
void finishReading();

/// True when the SELECT has a row.
bool hasRow(const Sql& select);

/// Runs a DELETE, INSERT or UPDATE on a connection of its own. False, traced, when it failed.
bool execute(const Sql& statement);

}  // namespace db
