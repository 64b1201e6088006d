#pragma once

#include <QHash>
#include <QString>
#include <QStringView>
#include <optional>

#include "platform/Rows.h"
#include "platform/Won.h"

/// The saved container slips, in `YTM`.
namespace container {

enum class SaveOutcome {
    Saved,
    Empty,   ///< The working slip has no lines; the slip's saved lines are gone all the same.
    Failed,  ///< The database did not take the change; the saved slip is as it was.
};

/// Replaces the user's saved slip by the working slip; another user's of the same number stays. The slip is
/// saved whole or not at all; the prints of a receipt that changes are forgotten. Without lines the recovery
/// of its collection is taken back, else that follows the slip's worth unless another was keyed:
/// `isCollectionMoved` receives whether it has. What another customer than `gCode` has under the number gets
/// one of its own.
SaveOutcome saveSlip(QStringView userId, QStringView workDate, QStringView junNo, QStringView gCode,
                     bool* isCollectionMoved = nullptr);

/// The user's slips of the day, highest number first, one row for each: slip number, customer name, customer
/// code.
platform::Rows slipsOfDay(QStringView userId, QStringView workDate);

/// What each of them is worth by its deposits, in won, by number.
QHash<QString, platform::Won> worthsOfDay(QStringView userId, QStringView workDate);

/// Deletes the container slip of that number and date, whoever wrote it, notes that `deletedBy` did, and
/// takes back what its collections have for it: that sum in won. Nothing, traced, when the database did not
/// take it; all is as before then.
std::optional<platform::Won> deleteSlip(QStringView workDate, QStringView junNo, QStringView deletedBy);

}  // namespace container
