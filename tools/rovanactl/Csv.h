#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>

namespace admin {

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

/// One record as parseCsv() reads it back, in UTF-8 with its line end; only fields that need quotes have
/// them.
QByteArray csvLine(const QStringList& fields);

}  // namespace admin
