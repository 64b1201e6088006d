#include "books/ReusedNumber.h"

#include "books/PrintLog.h"
#include "books/SlipNumbers.h"
#include "db/Query.h"
#include "platform/Trace.h"

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr db::Statement<
    u"SELECT GCode FROM MTMOK WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode <> '%s' "
    u"UNION "
    u"SELECT GCode FROM YTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode <> '%s'">
    kOthersOfSlips;
// Apart from those, because a database of an older terminal has no journal.
constexpr db::Statement<
    u"SELECT DISTINCT GCode FROM PAYJOURNAL WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' "
    u"AND GCode <> '%s' AND (State = 'sent' OR State = 'unknown')">
    kOthersOfPayments;
constexpr db::Statement<
    u"SELECT Number FROM PAYJOURNAL WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode = '%s'">
    kPayments;
constexpr db::Statement<
    u"UPDATE MTMOK SET JunNo = '%s', Gubun = CASE Gubun WHEN '단순결제' THEN Gubun ELSE '입금' END "
    u"WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode = '%s'">
    kMoveCollection;
constexpr db::Statement<
    u"UPDATE YTM SET JunNo = '%s' WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode = '%s'">
    kMoveContainers;
constexpr db::Statement<
    u"UPDATE PAYJOURNAL SET JunNo = '%s', Gubun = CASE WHEN Gubun IN ('', '단순결제') THEN Gubun ELSE '입금' "
    u"END "
    u"WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode = '%s'">
    kMovePayments;

}  // namespace

bool freeNumber(db::Transaction& transaction, QStringView date, QStringView junNo, QStringView userId,
                QStringView gCode) {
    if (gCode.isEmpty()) return true;
    QStringList others;
    const auto add = [&](db::CVORecordset& row) {
        if (const QString other = row.GetFieldString(0); !others.contains(other)) others << other;
    };
    db::forEachRow(kOthersOfSlips(date, junNo, userId, gCode, date, junNo, userId, gCode), add);
    db::forEachRow(kOthersOfPayments(date, junNo, userId, gCode), add);
    for (const QString& other : others) {
        const QString number = nextNumberOfReused(date);
        if (!transaction.run(kMoveCollection(number, date, junNo, userId, other)) ||
            !transaction.run(kMoveContainers(number, date, junNo, userId, other)) ||
            (db::hasRow(kPayments(date, junNo, userId, other)) &&
             !transaction.run(kMovePayments(number, date, junNo, userId, other)))) {
            return false;
        }
        for (const Paper paper : {Paper::ContainerReceipt, Paper::CollectionSlip}) {
            if (!movePrints(transaction, paper, date, junNo, userId, number)) return false;
        }
        platform::trace(
            u"slip number %1 of %2 was given again: what stayed of the earlier customer is %3"_s.arg(
                junNo, date, number));
    }
    return true;
}

}  // namespace books
