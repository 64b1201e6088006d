#include "books/CollectionRows.h"

#include <algorithm>

#include "db/Query.h"

namespace books {

using platform::formatWon;
using platform::parseWon;
using platform::Won;

namespace {

constexpr db::Statement<
    u"INSERT INTO MTMOK (DDate,Gubun,GCode,GName,JunNo,DTime,UserID,MMoney,PMoney,BMoney,YMoney,GMoney,"
    u"YGMoney,InMoney,WonMoney,CardMoney,MisuInMoney,UnderMoney,YDMoney,GDMoney) VALUES "
    u"('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s')">
    kInsert;
constexpr db::Statement<u"SELECT * FROM MTMOK WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s'"> kOwn;
constexpr db::Statement<u"SELECT * FROM MTMOK WHERE DDate = '%s' AND JunNo = '%s'"> kAnyones;

constexpr int kTextColumns = 7;  ///< Those in front of the amounts.

/// The table's columns in its own order.
constexpr std::array kTexts{&CollectionSlip::DDate, &CollectionSlip::Gubun, &CollectionSlip::GCode,
                            &CollectionSlip::GName, &CollectionSlip::JunNo, &CollectionSlip::DTime,
                            &CollectionSlip::UserID};
constexpr std::array kAmounts{
    &CollectionSlip::MMoney,      &CollectionSlip::PMoney,     &CollectionSlip::BMoney,
    &CollectionSlip::YMoney,      &CollectionSlip::GMoney,     &CollectionSlip::YGMoney,
    &CollectionSlip::InMoney,     &CollectionSlip::WonMoney,   &CollectionSlip::CardMoney,
    &CollectionSlip::MisuInMoney, &CollectionSlip::UnderMoney, &CollectionSlip::YDMoney,
    &CollectionSlip::GDMoney};
constexpr int kColumns = kTextColumns + int(kAmounts.size());  ///< Without the approval's two.
static_assert(kTexts.size() == kTextColumns && decltype(kInsert)::kValues == kColumns);

CollectionSlip slipOf(db::CVORecordset& row, int column) {
    CollectionSlip slip;
    for (const auto text : kTexts) slip.*text = row.GetFieldString(column++);
    for (const auto amount : kAmounts) slip.*amount = parseWon(row.GetFieldString(column++));
    return slip;
}

/// The rows of a SELECT of the whole table; nothing when they broke off.
std::optional<QList<CollectionSlip>> allRows(const db::Sql& select) {
    QList<CollectionSlip> slips;
    const int count = db::forEachRow(select, [&](db::CVORecordset& row) { slips << readCollection(row, 0); });
    return count < 0 ? std::nullopt : std::optional(slips);
}

/// Inserts as many of the row's columns as the statement takes.
template <typename Insert>
bool insertRow(db::Transaction& transaction, const Insert& insert, const CollectionSlip& slip) {
    const auto texts = columnTexts(slip);
    std::array<QStringView, Insert::kValues> values;
    std::copy_n(texts.begin(), values.size(), values.begin());
    return transaction.run(insert(values));
}

}  // namespace

std::array<QString, kCollectionColumns> columnTexts(const CollectionSlip& slip) {
    static_assert(kCollectionColumns == kColumns + 2);
    std::array<QString, kCollectionColumns> texts;
    std::size_t column = 0;
    for (const auto text : kTexts) texts[column++] = slip.*text;
    for (const auto amount : kAmounts) texts[column++] = formatWon(slip.*amount);
    texts[column++] = slip.MSGSENDTIME;
    texts[column] = slip.BANKTRANNO;
    return texts;
}

CollectionSlip readCollection(db::CVORecordset& row, int firstColumn) {
    CollectionSlip slip = slipOf(row, firstColumn);
    slip.MSGSENDTIME = row.GetFieldString(firstColumn + kColumns);
    slip.BANKTRANNO = row.GetFieldString(firstColumn + kColumns + 1);
    return slip;
}

QList<CollectionSlip> collectionRows(QStringView date, QStringView junNo, QStringView userId) {
    const auto rows = allRows(userId.isEmpty() ? kAnyones(date, junNo) : kOwn(date, junNo, userId));
    return rows.value_or(QList<CollectionSlip>());
}

std::optional<QList<CollectionSlip>> collectionsOfContainers(QStringView date, QStringView junNo,
                                                             QStringView userId) {
    // Those that stand beside their container slip. An empty user leaves the condition on him out.
    static constexpr db::Statement<
        u"SELECT * FROM MTMOK WHERE DDate = '%s' AND JunNo = '%s' AND ('%s' = '' OR UserID = '%s') AND "
        u"Gubun <> '단순결제' AND EXISTS (SELECT PCode FROM YTM WHERE YTM.DDate = MTMOK.DDate AND YTM.JunNo "
        u"= "
        u"MTMOK.JunNo AND YTM.UserID = MTMOK.UserID AND YTM.GCode = MTMOK.GCode)">
        kOfContainers;
    return allRows(kOfContainers(date, junNo, userId, userId));
}

std::optional<CollectionSlip> loadCollection(QStringView date, QStringView junNo, QStringView userId) {
    const auto rows = allRows(kOwn(date, junNo, userId)).value_or(QList<CollectionSlip>());
    return rows.isEmpty() ? std::nullopt : std::optional(rows.first());
}

std::optional<CollectionSlip> findByTransactionNumber(QStringView transactionNumber) {
    static constexpr db::Statement<
        u"SELECT DDate,Gubun,GCode,GName, JunNo,DTime ,UserID,MMoney,PMoney,BMoney,YMoney,GMoney, YGMoney, "
        u"InMoney,WonMoney,CardMoney,MisuInMoney,UnderMoney,YDMoney, GDMoney FROM MTMOK WHERE BANKTRANNO= "
        u"'%s' ORDER BY JunNo DESC">
        kByTransaction;
    std::optional<CollectionSlip> found;
    if (transactionNumber.isEmpty()) return found;
    db::forEachRow(kByTransaction(transactionNumber), [&](db::CVORecordset& row) {
        if (found) return;
        found = slipOf(row, 0);
        found->BANKTRANNO = transactionNumber.toString();
    });
    return found;
}

platform::Rows collectionsOfDay(QStringView userId, QStringView date) {
    static constexpr db::Statement<
        u"SELECT JunNo, GName, GCode FROM MTMOK WHERE USERID= '%s' and DDate = '%s' ORDER BY JunNo DESC">
        kOfDay;
    return db::selectRows(kOfDay(userId, date), 3);
}

std::optional<QList<CollectionSlip>> slipsOfDay(QStringView date, QStringView userId) {
    // An empty user leaves the condition on him out.
    static constexpr db::Statement<
        u"SELECT * FROM MTMOK WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s') ORDER BY JunNo, UserID">
        kAllOfDay;
    return allRows(kAllOfDay(date, userId, userId));
}

std::optional<QList<CollectionSlip>> approvedSlips(QStringView first, QStringView last) {
    static constexpr db::Statement<
        u"SELECT * FROM MTMOK WHERE MSGSENDTIME >= '%s' AND MSGSENDTIME <= '%s' AND BANKTRANNO <> '' "
        u"ORDER BY BANKTRANNO, MSGSENDTIME">
        kApproved;
    return allRows(kApproved(first, last));
}

bool writeApproval(db::Transaction& transaction, const CollectionSlip& slip) {
    static constexpr db::Statement<
        u"UPDATE MTMOK SET MSGSENDTIME = '%s', BANKTRANNO = '%s' "
        u"WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s'">
        kApprove;
    return transaction.run(kApprove(slip.MSGSENDTIME, slip.BANKTRANNO, slip.DDate, slip.JunNo, slip.UserID));
}

bool writeRow(db::Transaction& transaction, const CollectionSlip& slip) {
    // The entry's own INSERT leaves the approval's two columns out.
    const bool isIn = deleteRows(transaction, slip.DDate, slip.JunNo, slip.UserID) &&
                      insertRow(transaction, kInsert, slip) &&
                      (!slip.isApproved() || writeApproval(transaction, slip));
    return isIn && collectionRows(slip.DDate, slip.JunNo, slip.UserID) == QList<CollectionSlip>{slip};
}

bool addApprovedRow(db::Transaction& transaction, const CollectionSlip& slip) {
    static constexpr db::Statement<
        u"INSERT INTO MTMOK (DDate,Gubun,GCode,GName,JunNo,DTime,UserID,MMoney,PMoney,BMoney,YMoney,GMoney,"
        u"YGMoney,InMoney,WonMoney,CardMoney,MisuInMoney,UnderMoney,YDMoney,GDMoney,MSGSENDTIME,BANKTRANNO) "
        u"VALUES ('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s',"
        u"'%s','%s','%s','%s')">
        kInsertApproved;
    return insertRow(transaction, kInsertApproved, slip);
}

bool deleteRows(db::Transaction& transaction, QStringView date, QStringView junNo, QStringView userId) {
    static constexpr db::Statement<u"DELETE MTMOK WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' ">
        kDeleteOwn;
    static constexpr db::Statement<u"DELETE MTMOK WHERE JunNo= '%s' AND DDate = '%s' "> kDelete;
    return transaction.run(userId.isEmpty() ? kDelete(junNo, date) : kDeleteOwn(date, junNo, userId)) &&
           !db::hasRow(userId.isEmpty() ? kAnyones(date, junNo) : kOwn(date, junNo, userId));
}

}  // namespace books
