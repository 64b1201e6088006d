#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <span>

namespace platform {

struct CsvRecord {
    int line;  ///< Line of the file, from 1, on which the record begins.
    QStringList fields;
};

struct CsvFile {
    QList<CsvRecord> records;  ///< The heading is the first.
    QString error;             ///< What is wrong and on which line; empty when the whole file was read.
};

/// The mark by which a spreadsheet knows UTF-8 and so opens a table as Hangul.
inline constexpr QByteArrayView kCsvMark("\xEF\xBB\xBF", 3);

/// Reads comma-separated values as RFC 4180 writes them, in UTF-8 with or without its mark, or in code page
/// 949. A field in double quotes may hold commas, line ends and doubled quotes. Empty lines are skipped.
CsvFile parseCsv(QByteArrayView content);

/// A row of a table that a file holds, its texts in the order of the table's columns.
struct CsvRow {
    int line;  ///< As in CsvRecord.
    QStringList texts;
};

/// Reads the rows of a table whose columns the file's first line names, in any order and case. Returns what
/// is wrong and on which line, a column that is missing, unknown or doubled included; empty when `rows` holds
/// all.
QString readCsvRows(QByteArrayView content, QStringView table, std::span<const QStringView> columns,
                    QList<CsvRow>* rows);

/// One record as parseCsv() reads it back, in UTF-8 with its line end; only fields that need quotes have
/// them.
QByteArray csvLine(const QStringList& fields);

}  // namespace platform
