#pragma once

#include <QString>
#include <QStringView>
#include <optional>

#include "db/Transaction.h"

/// Whose slip a working table holds, and whether it has changes that are not saved, in `UNSAVED`: what a
/// terminal that ended in the middle of a slip can go on with. A database of an older terminal has no such
/// table: nothing is noted then.
namespace books {

/// The working tables: the sales slip's and the container slip's.
enum class Working { Sale, Containers };

/// Notes that the working table is about to hold the user's slip as it is saved.
void noteOpened(Working table, QStringView userId);

/// Commits `transaction`, which has changed the working slip, with a note of that. False when it did not
/// last.
bool commitChange(db::Transaction& transaction, Working table);

/// Notes as part of `transaction` that the working slip is saved.
void noteSaved(db::Transaction& transaction, Working table);

/// Notes that the changes of the working slip are given up.
void noteGivenUp(Working table);

/// Runs one statement that changes the working slip, and notes it. False when the change was not made.
bool changeWorkingSlip(Working table, const db::Sql& statement);

/// True while the working slip has changes that are not saved.
bool isUnsaved(Working table);

/// A slip with changes that were neither saved nor given up.
struct UnsavedSlip {
    Working table = Working::Sale;
    QString userId;
    QString date;  ///< "yyyy-MM-dd".
    QString gCode;
    QString gName;
    QString junNo;
    int lines = 0;               ///< At least 1.
    bool belongsToSale = false;  ///< A container slip of a visit with a saved sale.
};

/// What the working tables hold of that kind, of whatever user; the sales slip first. Nothing without one.
std::optional<UnsavedSlip> findUnsaved();

}  // namespace books
