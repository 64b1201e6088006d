#pragma once

#include <QList>
#include <QString>

#include "db/MasterImport.h"
#include "db/MasterLoads.h"

/// What the salesman is told about the office's files, without the dialogs.
namespace app {

/// What became of one of the files.
struct FileReport {
    const db::ImportFile* file;
    db::ImportResult result;
    bool isLater = false;  ///< The salesman left it for another time; there is no result then.
};

/// What the file holds, as the counts are written.
QString dataName(const db::ImportFile& file);

/// Asks whether a master table may lose so many of its rows.
QString shrinkageQuestion(const db::ImportFile& file, const db::Shrinkage& shrinkage);

/// What became of the files, several lines for each; empty when all that were opened are loaded whole, which
/// the counts show already.
QString importReport(const QList<FileReport>& files);

/// What is said at login about old master data; empty when there is none.
QString oldDataMessage(const QList<db::OldData>& old);

/// The same for the menu, where there is room for few words.
QString oldDataLine(const QList<db::OldData>& old);

}  // namespace app
