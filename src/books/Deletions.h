#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <optional>

#include "books/PrintLog.h"
#include "db/Transaction.h"
#include "platform/Won.h"

/// What was deleted of the saved slips, in `DELETED`. A database of an older terminal has no such table:
/// nothing can be noted then.
namespace books {

struct Deletion {
    QString date;
    Paper slip = Paper::Invoice;  ///< Which of the visit's slips.
    QString junNo;
    QString userId;  ///< Who wrote it.
    QString gCode;
    QString gName;
    platform::Won total;  ///< Goods and deposits, the collection's total, or the containers' worth, in won.
    QString deletedBy;
    QString deletedAt;  ///< "yyyy-MM-dd HH:mm:ss".
};

/// Notes as part of `transaction` that the slips of that date and number are about to be deleted: the user's,
/// or with an empty id everybody's. Nothing is noted where there is none. After false, when they could not be
/// read or the database did not take it, the transaction must not be committed.
[[nodiscard]] bool noteDeletion(db::Transaction& transaction, Paper slip, QStringView date, QStringView junNo,
                                QStringView userId, QStringView deletedBy);

/// The deletions of the day in their order: of the user's slips and those that he deleted; with an empty id
/// all. Nothing when they could not be read to the end; none without the table.
std::optional<QList<Deletion>> deletionsOfDay(QStringView date, QStringView userId);

}  // namespace books
