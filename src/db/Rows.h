#pragma once

#include <QList>
#include <QString>

#include "db/Statement.h"

namespace db {

/// The texts of a query's rows, row after row in one list, so that a long list is kept and shown as it is.
struct Rows {
    int columns = 0;
    QList<QString> cells;

    qsizetype count() const { return columns == 0 ? 0 : cells.size() / columns; }

    /// The text of a cell; empty outside the rows.
    QString text(qsizetype row, qsizetype column) const {
        if (row < 0 || column < 0 || column >= columns) return {};
        return cells.value(row * columns + column);
    }
};

/// Runs a SELECT on a connection of its own and keeps its first `columns` columns; no rows when it failed.
Rows selectRows(const Sql& select, int columns);

}  // namespace db
