#pragma once

#include <QList>
#include <QString>
#include <functional>

namespace platform {

/// A result's cells row after row, each row `columns` long; a list screen shows it as it is. The texts are
/// those of the database, "" for NULL.
struct Rows {
    int columns = 0;
    QList<QString> cells;
    bool isComplete = true;  ///< False when the statement failed or its rows broke off.

    int count() const { return columns > 0 ? int(cells.size() / columns) : 0; }
    bool isEmpty() const { return cells.isEmpty(); }

    /// The cell's text; `row` and `column` count from 0 and must be inside.
    const QString& at(int row, int column) const { return cells[qsizetype(row) * columns + column]; }

    /// The same; empty outside the rows.
    QString cell(int row, int column) const {
        return row < 0 || column < 0 || column >= columns ? QString()
                                                          : cells.value(qsizetype(row) * columns + column);
    }

    /// The first row that `isWanted` says yes to; -1 when there is none.
    template <typename Predicate>
    int find(Predicate&& isWanted) const {
        for (int row = 0; row < count(); ++row) {
            if (isWanted(row)) return row;
        }
        return -1;
    }
};

/// Rows that are read a piece at a time: each call appends the next ones. False when it gave the last.
using RowSource = std::function<bool(Rows*)>;

/// A source of rows that are there already.
inline RowSource wholeRows(Rows rows) {
    return [rows = std::move(rows)](Rows* result) {
        *result = rows;
        return false;
    };
}

/// All rows that the source has left.
inline Rows readAll(const RowSource& source) {
    Rows rows;
    while (source(&rows)) {
    }
    return rows;
}

}  // namespace platform
