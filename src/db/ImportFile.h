#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>
#include <span>
#include <vector>

#include "db/Statement.h"

/// The text files in which the office sends master data and open orders: five, and one that it may send
/// besides.
namespace db {

/// Where a waiting file lies: "Y" in \My Documents\, "Z" only on the storage card, "N" nowhere.
enum class ImportSource { None, Documents, StorageCard };

/// One kind of import file: its name, its table and how its lines are cut.
struct ImportFile {
    QStringView fileName;     ///< For example "MTM.RVN".
    int firstFieldLength;     ///< Characters of the fixed-width first field.
    int restLength;           ///< Characters of a line that count after the first field and its separator.
    int fields;               ///< Columns that a line fills.
    Sql (*countRows)();       ///< Selects the number of its table's rows.
    Sql (*deleteAll)();       ///< Empties the table; null for MTM, which keeps its rows and gains the file's.
    bool isOnlyOffices;       ///< Nothing but this file changes the table.
    QByteArray (*insert)();   ///< The INSERT of a line's row, with a "?" for each field.
    bool isOptional = false;  ///< An office need not send it, and an older terminal has no table for it.
};

/// The files in the order in which they are counted and loaded.
std::span<const ImportFile> importFiles();

/// The handheld path of the file in the folder that `source` names; empty for None.
QString importPath(const ImportFile& file, ImportSource source);

/// Where the file waits; a file that cannot be opened for reading and writing counts as absent.
ImportSource findImportFile(const ImportFile& file);

/// True when any of the files waits.
bool isImportWaiting();

/// Cuts one line, without its line end, into the file's fields, untrimmed; they are pieces of `line`. Text
/// beyond the length that counts is lost, and a field whose "|" is missing is empty, as are all after it.
void cutImportLine(const ImportFile& file, QStringView line, std::vector<QStringView>* fields);
/// The same for a line of ASCII characters only.
void cutImportLine(const ImportFile& file, QByteArrayView line, std::vector<QByteArrayView>* fields);

}  // namespace db
