#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include "db/ImportFile.h"

namespace office {

/// What one of the files of master data holds.
struct MasterFile {
    const db::ImportFile* file = nullptr;
    QString name;         ///< For example "GARAE.RVN", also when it came as CSV.
    QString table;        ///< "garae": office.master_garae holds it.
    QStringList columns;  ///< Of the table, those that the file fills.
    QList<QStringList> rows;

    /// SHA-256 of the rows: the same from a .RVN file and from a table.
    QByteArray digest() const;
    bool isOrders() const { return table == u"mtm"; }
    /// The rows' texts of one column.
    QStringList column(qsizetype at) const;
};

/// Reads GARAE.RVN and its like, lines in code page 949, or GARAE.csv, a table in UTF-8 under a heading; the
/// name says which, in any case. Throws Fault for another name, an unreadable file, and for any line that a
/// terminal would not take: the file is whole or it is none.
MasterFile readMasterFile(const QString& path);

}  // namespace office
