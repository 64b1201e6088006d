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

/// Reads comma-separated values as RFC 4180 writes them, in UTF-8, with or without a byte order mark. A field
/// in double quotes may hold commas, line ends and doubled quotes. Empty lines are skipped.
CsvFile parseCsv(QByteArrayView content);

/// One record as parseCsv() reads it back, in UTF-8 with its line end; only fields that need quotes have
/// them.
QByteArray csvLine(const QStringList& fields);

}  // namespace admin
