#pragma once

#include <QString>

#include "books/UnsavedSlip.h"

/// What keeps the lines of a slip that was not saved from being lost.
namespace app {

/// Asks, when the working slip has changes that are not saved, whether to leave without them, which are then
/// given up. False when the salesman stays.
bool mayLeave(books::Working table);

/// Offers to go on with the slip that a terminal which ended in the middle of it has left. One of another
/// user or work date is told and kept aside until that is logged in.
void offerUnsaved();

/// What is said of it: the question to its user on its work date, else that it was kept aside for them,
/// or could not be.
QString describeUnsaved(const books::UnsavedSlip& slip, QStringView userId, QStringView workDate,
                        bool isKept = true);

}  // namespace app
