#pragma once

#include <sqlite3.h>

#include <QAbstractTableModel>
#include <QString>
#include <vector>

namespace bench {

/// The least that shows a result in a table: its first `columns` columns, read by a bound statement.
class MinimalModel : public QAbstractTableModel {
  public:
    MinimalModel(sqlite3* database, const char* select, const std::vector<QString>& values, int columns)
        : columns_(columns) {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(database, select, -1, &statement, nullptr);
        for (int i = 0; i < int(values.size()); ++i) {
            const QByteArray value = values[size_t(i)].toUtf8();
            sqlite3_bind_text(statement, i + 1, value.constData(), int(value.size()), SQLITE_TRANSIENT);
        }
        while (sqlite3_step(statement) == SQLITE_ROW) {
            for (int i = 0; i < columns; ++i) {
                const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
                cells_.push_back(QString::fromUtf8(text, sqlite3_column_bytes(statement, i)));
            }
        }
        sqlite3_finalize(statement);
    }

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : int(cells_.size()) / columns_;
    }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : columns_; }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole) return {};
        return cells_[size_t(index.row() * columns_ + index.column())];
    }

  private:
    int columns_;
    std::vector<QString> cells_;
};

}  // namespace bench
