#pragma once

#include <QString>
#include <QStringView>
#include <span>

/// The tables of the terminal's database in their column order, which statements that read by position rely
/// on. The administrator's command makes the database from this; the terminal itself runs no schema
/// statement.
namespace db::schema {

/// What a database of this build has as its `user_version`; it grows with every change of the tables. A
/// database from before the number was kept has 0.
inline constexpr int kVersion = 3;

struct Table {
    QStringView name;
    std::span<const QStringView> columns;
    /// False for a table that an older terminal does not have and can work without.
    bool isRequired = true;
};

/// A search that the terminal's statements make often: `columns` is the index's column list.
struct Index {
    QStringView name;
    QStringView table;
    QStringView columns;
};

/// Every table, the import ledger included. All columns are text.
std::span<const Table> tables();
std::span<const Index> indexes();

/// The table of that name in any case, or null.
const Table* findTable(QStringView name);

/// The SQLite statements that make a table, an index, and all of both.
QString createStatement(const Table& table);
QString createStatement(const Index& index);
QString createStatements();

}  // namespace db::schema
