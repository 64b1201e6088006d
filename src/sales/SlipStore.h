#pragma once

#include <QList>
#include <QStringList>
#include <QStringView>

#include "platform/Rows.h"
#include "platform/Won.h"

/// The saved sales slips, in `MTM`.
namespace sales {

enum class SaveOutcome {
    Saved,
    Empty,   ///< The working slip has no lines; the slip's saved lines are gone all the same.
    Taken,   ///< The number holds another customer's lines; they are as they were.
    Failed,  ///< The database did not take the change; the saved slip is as it was.
};

/// True when the number holds lines of other customers than `gCode`, whoever wrote them, and none of the
/// user's of this one. Numbers are sorted as texts, so that after 9999 the same one is given again and again.
bool isOtherCustomers(QStringView userId, QStringView workDate, QStringView junNo, QStringView gCode);

/// Replaces the user's saved slip by the working slip, as unprinted and with the time of the clock. The slip
/// is saved whole or not at all. The collection and containers that another customer has under the number get
/// one of their own. The collection of the slip follows its total (books::SaleChange): `moved` receives by
/// how much, in won.
SaveOutcome saveSlip(QStringView userId, QStringView workDate, QStringView junNo,
                     platform::Won* moved = nullptr);

/// The salesman's slips of a day.
struct SlipList {
    platform::Rows slips;  ///< One row for each slip, in three columns: print state, or that its payment is
                           ///< open, customer name, slip number.
    QList<platform::Won>
        amounts;         ///< What each slip comes to, in won; rounded as the salesman's VAT mode says.
    QStringList states;  ///< How each slip stands, in a word.
    int printed = 0;
    int unprinted = 0;
};

/// The state of an order of the office that nobody has delivered yet.
inline constexpr QStringView kUnvisited = u"미방문";

SlipList slipsOfDay(QStringView userId, QStringView workDate);

/// Deletes the sales slip of that number and date, whoever wrote it, notes that `deletedBy` did, and with
/// `alsoFollowers` the collection and container slips that carry the same number and date, taking the
/// customers' receivables back. All of it or, when the database does not take the change, nothing: false.
bool deleteSlip(QStringView workDate, QStringView junNo, bool alsoFollowers, QStringView deletedBy);

}  // namespace sales
