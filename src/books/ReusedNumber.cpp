#include "books/ReusedNumber.h"

#include <algorithm>

#include "books/PrintLog.h"
#include "db/Query.h"
#include "platform/Rows.h"
#include "platform/Trace.h"
#include "platform/Won.h"

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr db::Statement<
    u"SELECT GCode FROM MTMOK WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode <> '%s' "
    u"AND Gubun <> '단순결제' UNION "
    u"SELECT GCode FROM YTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode <> '%s'">
    kOthersOfSlips;
// Apart from those, because a database of an older terminal has no journal.
constexpr db::Statement<
    u"SELECT DISTINCT GCode FROM PAYJOURNAL WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' "
    u"AND GCode <> '%s' AND Gubun <> '단순결제' AND (State = 'sent' OR State = 'unknown')">
    kOthersOfPayments;
constexpr db::Statement<
    u"SELECT JunNo FROM MTM WHERE DDate = '%s' UNION SELECT JunNo FROM MTMOK WHERE DDate = '%s' UNION "
    u"SELECT JunNo FROM YTM WHERE DDate = '%s'">
    kNumbers;
constexpr db::Statement<u"SELECT JunNo FROM PAYJOURNAL WHERE DDate = '%s'"> kPaymentNumbers;
constexpr db::Statement<
    u"SELECT Number FROM PAYJOURNAL WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode = '%s'">
    kPayments;
constexpr db::Statement<
    u"UPDATE MTMOK SET JunNo = '%s', Gubun = '입금' WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' "
    u"AND GCode = '%s' AND Gubun <> '단순결제'">
    kMoveCollection;
constexpr db::Statement<
    u"UPDATE YTM SET JunNo = '%s' WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode = '%s'">
    kMoveContainers;
constexpr db::Statement<
    u"UPDATE PAYJOURNAL SET JunNo = '%s', Gubun = '입금' WHERE DDate = '%s' AND JunNo = '%s' "
    u"AND UserID = '%s' AND GCode = '%s' AND Gubun <> '단순결제'">
    kMovePayments;

constexpr std::int64_t kFirst = 4001;
constexpr std::int64_t kLast = 4999;

QString nextNumber(QStringView date) {
    std::int64_t next = kFirst;
    const auto count = [&](db::CVORecordset& row) {
        const std::int64_t number = platform::parseInteger(row.GetFieldString(0));
        if (number >= kFirst && number <= kLast) next = std::max(next, number + 1);
    };
    db::forEachRow(kNumbers(date, date, date), count);
    db::forEachRow(kPaymentNumbers(date), count);
    return QString::number(next);
}

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
        const QString number = nextNumber(date);
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
