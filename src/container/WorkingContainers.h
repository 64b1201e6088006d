#pragma once

#include <QList>
#include <QStringView>
#include <optional>

#include "books/ContainerBalance.h"
#include "books/TransactionRecord.h"
#include "container/ContainerLine.h"
#include "platform/Rows.h"

/// The container slip that is being edited, in the working table `YTEMP`. There is one at a time.
namespace container {

/// Replaces the working slip by the saved lines of the user's slip; a slip without saved lines leaves it
/// empty. False, and the working slip stays as it was, when the database does not take the change.
bool reloadSlip(QStringView userId, QStringView workDate, QStringView junNo);

/// Leaves the working slip without lines.
void emptySlip();

/// True when the working slip has lines of another customer than `gCode`.
bool isOtherCustomers(QStringView gCode);

/// The lines by product code descending, in five columns: code, name, empty crates, filled crates, bottles.
platform::Rows workingLines();

/// The key of the line in that row of workingLines.
ContainerKey keyAt(const platform::Rows& lines, int row);

/// The sums of the lines, in won.
ContainerAmounts workingSums();

/// The lines as the container balance counts them.
QList<books::ContainerReturn> workingReturns();

/// What the session's customer holds of each container product, with the working slip as the one at hand.
QList<books::ContainerBalance> workingBalances(QStringView gCode, QStringView date, QStringView junNo,
                                               QStringView userId);

/// The line's amounts; nothing when there is no such line.
std::optional<ContainerAmounts> lineAmounts(const ContainerKey& key);

/// Adds a line. False when the database did not take it, as with a single quote in one of its texts.
bool insertLine(const ContainerLine& line);

/// Adds a line of the product, priced, for that slip and customer.
bool addProduct(const books::SlipIdentity& slip, const QString& gName, const QString& pCode,
                const ContainerCounts& counts);

/// Gives the line other counts and prices it anew. False also when the product is gone.
bool recount(const ContainerKey& key, const ContainerCounts& counts);

/// Changes the line's counts and with them its amounts. False, and the line stays as it was, when there is
/// no such line or the database does not take the change.
bool replaceCounts(const ContainerKey& key, const ContainerCounts& counts, const ContainerAmounts& amounts);

/// Changes one of the line's amounts to `keyed`; the others stay. False when nothing was changed.
bool replaceAmount(const ContainerKey& key, platform::Won ContainerAmounts::*amount, platform::Won keyed);

void deleteLine(const ContainerKey& key);

}  // namespace container
