#pragma once

#include <QString>
#include <QStringView>
#include <initializer_list>
#include <optional>

#include "books/PrintLog.h"
#include "print/Document.h"

/// The blocks that the documents of a slip share. A document is its head, a body of its own and the close.
namespace print {

using books::Copy;

/// The salesman of a slip, from PDAUSER; empty texts for a user who is not there.
struct Salesman {
    QString name;
    QString vatMode;  ///< "2", "3" or anything else.
    QString tel;
};
Salesman salesman(QStringView userId);

/// A party to a slip; particulars that are empty take no line.
struct Party {
    QString name;
    QString number;  ///< Business registration number.
    QString owner;
    QString address;
    QString tel;
};

/// The customer's particulars from GARAE under the name that the slip carries.
Party customer(QStringView gCode, QStringView gName);

/// What the head of a slip's document says.
struct SlipHead {
    QStringView date;
    QStringView time;  ///< Empty where the slip has none.
    QStringView junNo;
    Salesman salesman;
    Party customer;
};

/// A document as far as its body: the title, "(공급자 보관용)" or "(공급받는자 보관용)" where there are
/// copies, the mark of one that was printed before, the slip, the wholesaler from the config row, the
/// customer, and the double rule above the body.
Document slipDocument(QStringView title, std::optional<Copy> copy, bool reprint, const SlipHead& head);

/// The double rule below the body, a place for each who signs, thanks, and the call centre's number.
void closingBlock(Document& document, std::initializer_list<QStringView> signers = {u"인수자 서명"});

}  // namespace print
