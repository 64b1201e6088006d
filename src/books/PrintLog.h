#pragma once

#include <QSet>
#include <QString>
#include <QStringView>

#include "db/Transaction.h"

/// Which papers of a slip have been printed, in `PRINTLOG`. A database of an older terminal has no such
/// table: nothing was printed then, and nothing can be noted.
namespace books {

/// The papers of a slip, each from the rows of its own table under the slip's date, number and user.
enum class Paper {
    Invoice,           ///< 거래명세서, from `MTM`.
    ContainerReceipt,  ///< 용공인수증, from `YTM`.
    CollectionSlip,    ///< 입금표, from `MTMOK`.
};

/// In the order in which they are handed over.
inline constexpr Paper kPapers[] = {Paper::Invoice, Paper::ContainerReceipt, Paper::CollectionSlip};

/// Whose copy a paper is.
enum class Copy { Seller, Buyer };

/// The paper's name as the user reads it, without blanks; `Document` in the table.
QStringView paperName(Paper paper);

/// "공급자용" or "공급받는자용"; `Copy` in the table.
QStringView copyName(Copy copy);

/// True when that copy of the paper has been printed.
bool isPrintNoted(Paper paper, Copy copy, QStringView date, QStringView junNo, QStringView userId);

/// The numbers of the user's slips of the day of which a copy of the paper has been printed.
QSet<QString> printedNumbers(Paper paper, QStringView date, QStringView userId);

/// Notes a print with the time of the clock, as part of `transaction`.
void notePrint(db::Transaction& transaction, Paper paper, Copy copy, QStringView date, QStringView junNo,
               QStringView userId);

/// Forgets the prints of a paper whose rows are replaced or deleted, as part of `transaction`: its next print
/// is a first one. After false, when the database did not take it, the transaction must not be committed.
[[nodiscard]] bool forgetPrints(db::Transaction& transaction, Paper paper, QStringView date,
                                QStringView junNo, QStringView userId);

/// The same whoever wrote the slip.
[[nodiscard]] bool forgetPrints(db::Transaction& transaction, Paper paper, QStringView date,
                                QStringView junNo);

/// Takes the prints of a paper along to the number that its rows get, as part of `transaction`. After
/// false it must not be committed.
[[nodiscard]] bool movePrints(db::Transaction& transaction, Paper paper, QStringView date, QStringView junNo,
                              QStringView userId, QStringView number);

}  // namespace books
