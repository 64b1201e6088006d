#include "sales/SlipStore.h"

#include <algorithm>

#include "books/CollectionMoves.h"
#include "books/CollectionSlip.h"
#include "books/DaySlips.h"
#include "books/Deletions.h"
#include "books/PaymentJournal.h"
#include "books/PrintLog.h"
#include "books/ReusedNumber.h"
#include "books/SaleAmounts.h"
#include "books/UndeliveredOrders.h"
#include "books/UnsavedSlip.h"
#include "db/Records.h"
#include "platform/Clock.h"
#include "sales/SlipLine.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;

namespace {

/// True when the saved slip has a customer whom none of the lines names.
bool isOthers(const QList<SlipLine>& lines, QStringView userId, QStringView workDate, QStringView junNo) {
    static constexpr db::Statement<
        u"SELECT DISTINCT GCode FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s'">
        kCustomers;
    if (lines.isEmpty()) return false;
    bool isOthers = false;
    db::forEachRow(kCustomers(workDate, junNo, userId), [&](db::CVORecordset& row) {
        const QString customer = row.GetFieldString(0);
        if (!customer.isEmpty() && std::ranges::find(lines, customer, &SlipLine::GCode) == lines.end())
            isOthers = true;
    });
    return isOthers;
}

/// Saves the lines as part of `transaction`.
bool insertLines(db::Transaction& transaction, QList<SlipLine> lines, QStringView userId) {
    static constexpr db::Statement<
        u"INSERT INTO MTM (DDate,Gubun,GCode,GName,JunNo,WorkGubun,PCode,PName,JGubun, Box,Bon,"
        u"MMoney,BMoney,YMoney,GMoney,UserID,DTime) VALUES ('%s','%s','%s','%s','%s','%s','%s',"
        u"'%s','%s','%s','%s','%s','%s','%s','%s','%s','%s')">
        kInsert;
    // A slip that is saved again has to be printed again.
    for (SlipLine& line : lines) line.WorkGubun = kUnprinted.toString();
    const QString savedAt = platform::clock::now().toString(u"HH:mm"_s);
    return db::insertRecords(transaction, kInsert, kSlipLineColumns, lines, userId, savedAt);
}

}  // namespace

bool isOtherCustomers(QStringView userId, QStringView workDate, QStringView junNo, QStringView gCode) {
    static constexpr db::Statement<
        u"SELECT GCode FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND GCode <> '%s' AND GCode <> '' AND "
        u"NOT EXISTS (SELECT 1 FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND GCode = '%s' AND UserID = "
        u"'%s')">
        kOtherCustomers;
    return db::hasRow(kOtherCustomers(workDate, junNo, gCode, workDate, junNo, gCode, userId));
}

SaveOutcome saveSlip(QStringView userId, QStringView workDate, QStringView junNo, platform::Won* moved) {
    static constexpr db::Statement<u"DELETE MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' ">
        kDeleteOwn;
    static constexpr db::Statement<u" SELECT * FROM TEMP "> kWorkingLines;
    db::Transaction transaction;
    const auto lines = db::selectRecords(kWorkingLines(), kSlipLineColumns);
    if (!lines) return SaveOutcome::Failed;
    if (isOthers(*lines, userId, workDate, junNo)) return SaveOutcome::Taken;
    const books::SaleChange change(workDate, junNo, userId);
    // A slip that is saved without lines is gone.
    if (lines->isEmpty() &&
        !books::noteDeletion(transaction, books::Paper::Invoice, workDate, junNo, userId, userId)) {
        return SaveOutcome::Failed;
    }
    if (!transaction.run(kDeleteOwn(workDate, junNo, userId)) || !insertLines(transaction, *lines, userId))
        return SaveOutcome::Failed;
    // What stayed of an earlier customer's slip leaves the number to the sale that has it now.
    if (!books::forgetPrints(transaction, books::Paper::Invoice, workDate, junNo, userId) ||
        !books::freeNumber(transaction, workDate, junNo, userId, lines->value(0).GCode)) {
        return SaveOutcome::Failed;
    }
    const auto difference = change.moveCollections(transaction);
    books::noteSaved(transaction, books::Working::Sale);
    if (!difference || !transaction.commit()) return SaveOutcome::Failed;
    if (moved) *moved = *difference;
    return lines->isEmpty() ? SaveOutcome::Empty : SaveOutcome::Saved;
}

SlipList slipsOfDay(QStringView userId, QStringView workDate) {
    static constexpr db::Statement<
        u"SELECT WorkGubun, GName, JunNo FROM MTM WHERE USERID= '%s' and DDate = '%s' "
        u"ORDER BY WorkGubun , JunNo DESC ">
        kSlips;
    SlipList list;
    list.slips.columns = 3;
    QString previous;
    const books::DaySlips day(workDate, userId);
    const auto orders = books::UndeliveredOrders::ofDay(workDate, userId);
    const QHash<QString, books::SaleAmounts> sales = books::salesOfDay(workDate, userId);
    db::forEachRow(kSlips(userId, workDate), [&](db::CVORecordset& row) {
        const QString junNo = row.GetFieldString(2);
        // One slip's lines stand together in this order; a slip with two print states is listed twice.
        if (!list.slips.isEmpty() && junNo == previous) return;
        previous = junNo;
        const QString state = row.GetFieldString(0);
        ++(state == kUnprinted ? list.unprinted : list.printed);
        const QString payment = day.paymentState(junNo);
        list.slips.cells << (day.isPaymentOpen(junNo) ? books::kBeingAsked.toString() : state)
                         << row.GetFieldString(1) << junNo;
        list.amounts << sales.value(junNo).total();
        list.states << (orders && orders->contains(workDate.toString(), junNo, userId.toString())
                            ? kUnvisited.toString()
                        : payment.isEmpty() || payment == kPaid ? state
                                                                : payment);
    });
    return list;
}

bool deleteSlip(QStringView workDate, QStringView junNo, bool alsoFollowers, QStringView deletedBy) {
    static constexpr db::Statement<u"DELETE   MTM WHERE JunNo= '%s' AND DDate = '%s' "> kDeleteSales;
    static constexpr db::Statement<u"DELETE YTM WHERE JunNo= '%s' AND DDate = '%s' "> kDeleteContainers;
    db::Transaction transaction;
    const auto note = [&](books::Paper slip) {
        return books::noteDeletion(transaction, slip, workDate, junNo, {}, deletedBy);
    };
    if (!note(books::Paper::Invoice) || !transaction.run(kDeleteSales(junNo, workDate)) ||
        !books::forgetPrints(transaction, books::Paper::Invoice, workDate, junNo)) {
        return false;
    }
    const bool areFollowersGone =
        !alsoFollowers ||
        (books::removeCollections(transaction, workDate, junNo, deletedBy) &&
         note(books::Paper::ContainerReceipt) && transaction.run(kDeleteContainers(junNo, workDate)) &&
         books::forgetPrints(transaction, books::Paper::ContainerReceipt, workDate, junNo));
    return areFollowersGone && transaction.commit();
}

}  // namespace sales
