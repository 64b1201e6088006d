#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <optional>

#include "db/Transaction.h"
#include "platform/Won.h"

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
    QString userId{};
    QString date{};  ///< "yyyy-MM-dd".
    QString gCode{};
    QString gName{};
    QString junNo{};
    int lines = 0;               ///< At least 1.
    platform::Won total{};       ///< What the sale comes to, or what the containers are worth.
    bool belongsToSale = false;  ///< A container slip of a visit with a saved sale.
    QString keptAt{};            ///< When it was kept aside; empty while a working table holds it.
};

/// What the working tables hold of that kind, of whatever user; the sales slip first. Nothing without one.
std::optional<UnsavedSlip> findUnsaved();

/// Moves a slip out of its working table to where it waits for its user. False, and it stays, when the
/// database did not take it.
bool keepAside(const UnsavedSlip& slip);

/// The user's slips that were kept aside, the oldest first.
QList<UnsavedSlip> keptSlips(QStringView userId);

/// Moves a slip that was kept aside back into its working table, as one that is not saved. Where its number
/// has been given to another slip meanwhile it gets the next one, in `slip` as well. False, and it stays
/// kept, when the database did not take it.
bool takeUp(UnsavedSlip* slip);

/// Forgets a slip that was kept aside.
void discardKept(const UnsavedSlip& slip);

}  // namespace books
