#pragma once

#include <QString>
#include <QStringView>

#include "print/Document.h"

/// The blocks that the documents of a slip share, each read from its own table.
namespace print {

/// Whose copy a slip is.
enum class Copy { Seller, Buyer };

/// "(공급자 보관용)" or "(공급받는자 보관용)", and under it the mark of a slip that was printed before.
void copyBlock(Document& document, Copy copy, bool reprint);

/// The salesman of a slip, from PDAUSER; empty texts for a user who is not there.
struct Salesman {
    QString name;
    QString vatMode;  ///< "2", "3" or anything else.
    QString tel;
};
Salesman salesman(QStringView userId);

/// Date, time, slip number and salesman.
void slipBlock(Document& document, QStringView date, QStringView time, QStringView junNo,
               const Salesman& salesman);

/// The wholesaler's particulars from the config row. Particulars that are empty take no line.
void sellerBlock(Document& document);

/// The customer's particulars from GARAE under the name that the slip carries.
void customerBlock(Document& document, QStringView gCode, QStringView gName);

/// The place where the customer signs, thanks, and the call centre's number.
void closingBlock(Document& document);

}  // namespace print
