#include "books/PrintLog.h"

#include "db/Query.h"
#include "platform/Clock.h"

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr db::Statement<
    u"SELECT JunNo FROM PRINTLOG WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND Document = '%s'">
    kSelectOwn;

}  // namespace

QStringView paperName(Paper paper) {
    switch (paper) {
        case Paper::Invoice: return u"거래명세서";
        case Paper::ContainerReceipt: return u"용공인수증";
        case Paper::CollectionSlip: return u"입금표";
    }
    return {};
}

QStringView copyName(Copy copy) {
    return copy == Copy::Seller ? u"공급자용" : u"공급받는자용";
}

bool isPrintNoted(Paper paper, Copy copy, QStringView date, QStringView junNo, QStringView userId) {
    static constexpr db::Statement<
        u"SELECT JunNo FROM PRINTLOG WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND Document = "
        u"'%s' AND Copy = '%s'">
        kSelectCopy;
    return db::hasRow(kSelectCopy(date, junNo, userId, paperName(paper), copyName(copy)));
}

QSet<QString> printedNumbers(Paper paper, QStringView date, QStringView userId) {
    static constexpr db::Statement<
        u"SELECT JunNo FROM PRINTLOG WHERE DDate = '%s' AND UserID = '%s' AND Document = '%s'">
        kSelectDay;
    QSet<QString> numbers;
    db::forEachRow(kSelectDay(date, userId, paperName(paper)),
                   [&](db::CVORecordset& row) { numbers << row.GetFieldString(0); });
    return numbers;
}

void notePrint(db::Transaction& transaction, Paper paper, Copy copy, QStringView date, QStringView junNo,
               QStringView userId) {
    static constexpr db::Statement<
        u"INSERT INTO PRINTLOG (DDate,JunNo,UserID,Document,Copy,PrintedAt) VALUES "
        u"('%s','%s','%s','%s','%s','%s')">
        kInsert;
    const QString now = platform::clock::now().toString(u"yyyy-MM-dd HH:mm:ss"_s);
    transaction.connection().Execute(kInsert(date, junNo, userId, paperName(paper), copyName(copy), now));
}

// Where the table is missing the statement fails and no row is found: nothing is left to forget or to move.
bool forgetPrints(db::Transaction& transaction, Paper paper, QStringView date, QStringView junNo,
                  QStringView userId) {
    static constexpr db::Statement<
        u"DELETE PRINTLOG WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND Document = '%s'">
        kDeleteOwn;
    transaction.connection().Execute(kDeleteOwn(date, junNo, userId, paperName(paper)));
    return !db::hasRow(kSelectOwn(date, junNo, userId, paperName(paper)));
}

bool forgetPrints(db::Transaction& transaction, Paper paper, QStringView date, QStringView junNo) {
    static constexpr db::Statement<
        u"SELECT JunNo FROM PRINTLOG WHERE DDate = '%s' AND JunNo = '%s' AND Document = '%s'">
        kSelectAnyones;
    static constexpr db::Statement<u"DELETE PRINTLOG WHERE DDate = '%s' AND JunNo = '%s' AND Document = '%s'">
        kDeleteAnyones;
    transaction.connection().Execute(kDeleteAnyones(date, junNo, paperName(paper)));
    return !db::hasRow(kSelectAnyones(date, junNo, paperName(paper)));
}

bool movePrints(db::Transaction& transaction, Paper paper, QStringView date, QStringView junNo,
                QStringView userId, QStringView number) {
    static constexpr db::Statement<
        u"UPDATE PRINTLOG SET JunNo = '%s' WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' "
        u"AND Document = '%s'">
        kMoveOwn;
    transaction.connection().Execute(kMoveOwn(number, date, junNo, userId, paperName(paper)));
    return !db::hasRow(kSelectOwn(date, junNo, userId, paperName(paper)));
}

}  // namespace books
