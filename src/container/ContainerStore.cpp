#include "container/ContainerStore.h"

#include "books/CollectionMoves.h"
#include "books/Deletions.h"
#include "books/PrintLog.h"
#include "books/ReusedNumber.h"
#include "books/UnsavedSlip.h"
#include "container/ContainerLine.h"
#include "db/Records.h"

namespace container {

SaveOutcome saveSlip(QStringView userId, QStringView workDate, QStringView junNo, QStringView gCode,
                     bool* isCollectionMoved) {
    static constexpr db::Statement<u"DELETE YTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' ">
        kDeleteOwn;
    static constexpr db::Statement<
        u"SELECT DDate,GCode,GName,JunNo,PCode,PName,FBox,NBox,Bon,YMONEY,GMONEY,YSAMT,GSAMT FROM YTM "
        u"WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' ORDER BY PCode">
        kSavedLines;
    static constexpr db::Statement<u" SELECT * FROM YTEMP "> kWorkingLines;
    static constexpr db::Statement<
        u"INSERT INTO YTM (DDate,GCode,GName,JunNo,PCode,PName,FBox,NBox,Bon,YMONEY,GMONEY,YSAMT,GSAMT,"
        u"UserID) VALUES ('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s')">
        kInsert;
    db::Transaction transaction;
    if (!books::freeNumber(transaction, workDate, junNo, userId, gCode)) return SaveOutcome::Failed;
    const auto saved = [&] {
        return db::selectRecords(kSavedLines(workDate, junNo, userId), kContainerLineColumns);
    };
    const auto before = saved();
    const auto lines = db::selectRecords(kWorkingLines(), kContainerLineColumns);
    if (!lines) return SaveOutcome::Failed;
    const books::ContainerChange change(workDate, junNo, userId);
    // A slip without lines is none, and no collection is left with its worth.
    if (lines->isEmpty() &&
        (!books::noteDeletion(transaction, books::Paper::ContainerReceipt, workDate, junNo, userId, userId) ||
         !books::takeRecoveriesBack(transaction, workDate, junNo, userId))) {
        return SaveOutcome::Failed;
    }
    if (!transaction.run(kDeleteOwn(workDate, junNo, userId)) ||
        !db::insertRecords(transaction, kInsert, kContainerLineColumns, *lines, userId)) {
        return SaveOutcome::Failed;
    }
    // A slip that is saved as it was need not be printed again.
    if (saved() != before &&
        !books::forgetPrints(transaction, books::Paper::ContainerReceipt, workDate, junNo, userId)) {
        return SaveOutcome::Failed;
    }
    const auto isMoved = lines->isEmpty() ? false : change.moveCollections(transaction);
    books::noteSaved(transaction, books::Working::Containers);
    if (!isMoved || !transaction.commit()) return SaveOutcome::Failed;
    if (isCollectionMoved) *isCollectionMoved = *isMoved;
    return lines->isEmpty() ? SaveOutcome::Empty : SaveOutcome::Saved;
}

platform::Rows slipsOfDay(QStringView userId, QStringView workDate) {
    static constexpr db::Statement<
        u"SELECT JunNo, GName, GCode FROM YTM WHERE USERID= '%s' and DDate = '%s' ORDER BY JunNo DESC ">
        kSlips;
    platform::Rows slips{.columns = 3, .cells = {}};
    QString previous;
    db::forEachRow(kSlips(userId, workDate), [&](db::CVORecordset& row) {
        const QString junNo = row.GetFieldString(0);
        // A slip has a row for each product; in this order they stand together.
        if (!slips.isEmpty() && junNo == previous) return;
        previous = junNo;
        slips.cells << junNo << row.GetFieldString(1) << row.GetFieldString(2);
    });
    return slips;
}

QHash<QString, platform::Won> worthsOfDay(QStringView userId, QStringView workDate) {
    static constexpr db::Statement<
        u"SELECT JunNo, YMONEY, GMONEY FROM YTM WHERE UserID = '%s' AND DDate = '%s'">
        kWorths;
    QHash<QString, platform::Won> worths;
    db::forEachRow(kWorths(userId, workDate), [&](db::CVORecordset& row) {
        worths[row.GetFieldString(0)] +=
            platform::parseWon(row.GetFieldString(1)) + platform::parseWon(row.GetFieldString(2));
    });
    return worths;
}

std::optional<platform::Won> deleteSlip(QStringView workDate, QStringView junNo, QStringView deletedBy) {
    static constexpr db::Statement<u"DELETE YTM WHERE JunNo= '%s' AND DDate = '%s' "> kDeleteAll;
    db::Transaction transaction;
    if (!books::noteDeletion(transaction, books::Paper::ContainerReceipt, workDate, junNo, {}, deletedBy))
        return std::nullopt;
    const auto takenBack = books::takeRecoveriesBack(transaction, workDate, junNo, {});
    const bool isDeleted = takenBack && transaction.run(kDeleteAll(junNo, workDate)) &&
                           books::forgetPrints(transaction, books::Paper::ContainerReceipt, workDate, junNo);
    return isDeleted && transaction.commit() ? takenBack : std::nullopt;
}

}  // namespace container
