#pragma once

#include <QHash>
#include <QStringList>
#include <QStringView>
#include <cstdint>
#include <optional>

#include "platform/Rows.h"
#include "sales/LineAmounts.h"
#include "sales/SlipLine.h"

/// The sales slip that is being edited, in the working table `TEMP`. There is one at a time.
namespace sales {

/// A slip as it is shown when it is opened.
struct OpenedSlip {
    QString GCode;         ///< The slip's customer; empty for a slip without saved lines.
    platform::Rows lines;  ///< As workingLines gives them.
    SlipSums sums;
};

/// Replaces the working slip by the saved lines of the user's slip; a slip without saved lines leaves it
/// empty. False, and the working slip stays as it was, when the database does not take the change.
bool reloadSlip(QStringView userId, QStringView workDate, QStringView junNo);

/// reloadSlip, and the saved lines and sums to show; nothing when the working slip could not be made.
std::optional<OpenedSlip> openSlip(QStringView userId, QStringView workDate, QStringView junNo);

/// The working slip as it stands, to show it again without opening what is saved.
OpenedSlip resumeSlip();

/// The lines by product code descending, in four columns: code, name, boxes, bottles.
platform::Rows workingLines();

/// The key of the line in that row of workingLines.
LineKey keyAt(const platform::Rows& lines, int row);

/// What the list shows of a line below its name.
struct LineDetail {
    QString PName;
    platform::Won total;  ///< Goods and deposits.
    bool isFree = false;  ///< The goods cost nothing.
    QString Size;         ///< Of the product; empty for one that is not listed any more.
};
/// The lines by code, boxes and bottles.
QHash<QStringList, LineDetail> workingDetails();

/// The sums of the lines, in won.
SlipSums workingSums();

bool isWorkingSlipEmpty();

/// The line's amounts; nothing when there is no such line.
std::optional<LineAmounts> lineAmounts(const LineKey& key);

/// How many lines have that key; more than one when the office sent two alike.
int linesOf(const LineKey& key);

/// Adds a line. False when the database did not take it, as with a single quote in one of its texts.
bool insertLine(const SlipLine& line);

/// Replaces all lines by these; the names of those with a quote in a text, which cannot be lines, go to
/// `refused`. False, and the working slip stays as it was, when the database does not take the change.
bool replaceLines(const QList<SlipLine>& lines, QStringList* refused);

/// Changes the line's quantities and with them its amounts. False, and the line stays as it was, when there
/// is no such line or more than one, or when the database does not take the change.
bool replaceQuantities(const LineKey& key, std::int64_t boxes, std::int64_t bottles,
                       const LineAmounts& amounts);

/// Changes the line's supply and VAT; its deposits stay. False, as it was, when it is not one line.
bool replaceAmounts(const LineKey& key, const LineAmounts& amounts);

/// Deletes the line, and whatever is like it.
void deleteLine(const LineKey& key);

}  // namespace sales
