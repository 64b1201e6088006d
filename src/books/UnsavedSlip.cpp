#include "books/UnsavedSlip.h"

#include "books/PayableTotal.h"
#include "books/SaleAmounts.h"
#include "books/SlipNumbers.h"
#include "db/Query.h"
#include "platform/Clock.h"

namespace books {
namespace {

constexpr db::Statement<u"UPDATE UNSAVED SET Changed = '%s' WHERE Slip = '%s'"> kMark;
constexpr db::Statement<u"SELECT UserID FROM UNSAVED WHERE Slip = '%s' AND Changed = '1'"> kChanged;

constexpr QStringView tableName(Working table) {
    return table == Working::Sale ? u"TEMP" : u"YTEMP";
}

/// The columns that a slip is told from; amounts of containers come without the parts of goods.
void readLine(UnsavedSlip* slip, db::CVORecordset& row, platform::Won* supply, platform::Won* vat) {
    const auto won = [&](int column) { return platform::parseWon(row.GetFieldString(column)); };
    slip->date = row.GetFieldString(0);
    slip->gCode = row.GetFieldString(1);
    slip->gName = row.GetFieldString(2);
    slip->junNo = row.GetFieldString(3);
    slip->total += won(4) + won(5);
    if (slip->table == Working::Containers) return;
    *supply += won(6);
    *vat += won(7);
}

/// Reads the slip of that user from the lines of `select`; nothing without one.
std::optional<UnsavedSlip> readSlip(Working table, const QString& userId, const db::Sql& select) {
    static constexpr db::Statement<
        u"SELECT JunNo FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode = '%s'">
        kSale;
    UnsavedSlip slip;
    slip.table = table;
    slip.userId = userId;
    platform::Won supply;
    platform::Won vat;
    slip.lines = db::forEachRow(select, [&](db::CVORecordset& row) { readLine(&slip, row, &supply, &vat); });
    if (slip.lines <= 0) return std::nullopt;
    if (table == Working::Sale)
        slip.total += payableTotal(supply, vat, vatMode(userId));
    else
        slip.belongsToSale = db::hasRow(kSale(slip.date, slip.junNo, slip.userId, slip.gCode));
    return slip;
}

std::optional<UnsavedSlip> findUnsaved(Working table) {
    static constexpr db::Statement<u"SELECT DDate,GCode,GName,JunNo,YMoney,GMoney,MMoney,BMoney FROM TEMP">
        kSaleLines;
    static constexpr db::Statement<u"SELECT DDate,GCode,GName,JunNo,YMONEY,GMONEY FROM YTEMP">
        kContainerLines;
    const auto user = db::firstRow(kChanged(tableName(table)));
    if (!user) return std::nullopt;
    return readSlip(table, user->value(0), table == Working::Sale ? kSaleLines() : kContainerLines());
}

void noteOpened(db::Transaction& transaction, Working table, QStringView userId, QStringView isChanged) {
    static constexpr db::Statement<u"DELETE UNSAVED WHERE Slip = '%s'"> kForget;
    static constexpr db::Statement<u"INSERT INTO UNSAVED (Slip,UserID,Changed) VALUES ('%s','%s','%s')">
        kOpened;
    // Without its table nothing more is said than the first statement's trace.
    if (transaction.run(kForget(tableName(table))))
        transaction.run(kOpened(tableName(table), userId, isChanged));
}

/// The number under which a slip that was kept aside goes on.
QString numberOf(const UnsavedSlip& slip) {
    static constexpr db::Statement<
        u"SELECT JunNo FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND NOT (UserID = '%s' AND GCode = '%s')">
        kOtherSale;
    static constexpr db::Statement<
        u"SELECT JunNo FROM YTM WHERE DDate = '%s' AND JunNo = '%s' AND NOT (UserID = '%s' AND GCode = '%s')">
        kOtherContainers;
    if (slip.belongsToSale) return slip.junNo;
    const bool isSale = slip.table == Working::Sale;
    const bool isGiven =
        db::hasRow(isSale ? kOtherSale(slip.date, slip.junNo, slip.userId, slip.gCode)
                          : kOtherContainers(slip.date, slip.junNo, slip.userId, slip.gCode));
    return isGiven ? nextSlipNumber(isSale ? 1 : 3, slip.date).value_or(slip.junNo) : slip.junNo;
}

constexpr db::Statement<u"DELETE KEPTSALE WHERE UserID = '%s' AND KeptAt = '%s'"> kForgetSale;
constexpr db::Statement<u"DELETE KEPTCONTAINERS WHERE UserID = '%s' AND KeptAt = '%s'"> kForgetContainers;

db::Sql forgetKept(const UnsavedSlip& slip) {
    return slip.table == Working::Sale ? kForgetSale(slip.userId, slip.keptAt)
                                       : kForgetContainers(slip.userId, slip.keptAt);
}

/// The sale of a visit stands in its working table while its containers are keyed.
bool takeUpSale(db::Transaction& transaction, const UnsavedSlip& slip) {
    static constexpr db::Statement<u"DELETE TEMP "> kEmpty;
    static constexpr db::Statement<
        u"INSERT INTO TEMP SELECT DDate,Gubun,GCode,GName,JunNo,WorkGubun,PCode,PName,JGubun,Box,Bon,MMoney,"
        u"BMoney,YMoney,GMoney FROM MTM WHERE UserID = '%s' AND DDate = '%s' AND JunNo = '%s'">
        kSale;
    return transaction.run(kEmpty()) && transaction.run(kSale(slip.userId, slip.date, slip.junNo));
}

}  // namespace

void noteOpened(Working table, QStringView userId) {
    db::Transaction transaction(db::Survives::ProcessEnd);
    noteOpened(transaction, table, userId, u"");
    transaction.commit();
}

bool commitChange(db::Transaction& transaction, Working table) {
    transaction.run(kMark(u"1", tableName(table)));
    return transaction.commit();
}

void noteSaved(db::Transaction& transaction, Working table) {
    transaction.run(kMark(u"", tableName(table)));
}

void noteGivenUp(Working table) {
    db::changeWorkingTable(kMark(u"", tableName(table)));
}

bool changeWorkingSlip(Working table, const db::Sql& statement) {
    db::Transaction transaction(db::Survives::ProcessEnd);
    return transaction.run(statement) && commitChange(transaction, table);
}

bool isUnsaved(Working table) {
    return db::hasRow(kChanged(tableName(table)));
}

std::optional<UnsavedSlip> findUnsaved() {
    auto sale = findUnsaved(Working::Sale);
    return sale ? sale : findUnsaved(Working::Containers);
}

bool keepAside(const UnsavedSlip& slip) {
    static constexpr db::Statement<u"INSERT INTO KEPTSALE SELECT TEMP.*, '%s', '%s' FROM TEMP"> kKeepSale;
    static constexpr db::Statement<u"INSERT INTO KEPTCONTAINERS SELECT YTEMP.*, '%s', '%s' FROM YTEMP">
        kKeepContainers;
    static constexpr db::Statement<u"DELETE TEMP "> kEmptySale;
    static constexpr db::Statement<u"DELETE YTEMP "> kEmptyContainers;
    const bool isSale = slip.table == Working::Sale;
    const QString now = platform::clock::now().toString(Qt::ISODateWithMs);
    db::Transaction transaction;
    if (!transaction.run(isSale ? kKeepSale(slip.userId, now) : kKeepContainers(slip.userId, now)) ||
        !transaction.run(isSale ? kEmptySale() : kEmptyContainers()))
        return false;
    noteSaved(transaction, slip.table);
    return transaction.commit();
}

QList<UnsavedSlip> keptSlips(QStringView userId) {
    static constexpr db::Statement<
        u"SELECT KeptAt, 'S' FROM KEPTSALE WHERE UserID = '%s' UNION "
        u"SELECT KeptAt, 'C' FROM KEPTCONTAINERS WHERE UserID = '%s' ORDER BY 1, 2 DESC">
        kKept;
    static constexpr db::Statement<
        u"SELECT DDate,GCode,GName,JunNo,YMoney,GMoney,MMoney,BMoney FROM KEPTSALE "
        u"WHERE UserID = '%s' AND KeptAt = '%s'">
        kSaleLines;
    static constexpr db::Statement<
        u"SELECT DDate,GCode,GName,JunNo,YMONEY,GMONEY FROM KEPTCONTAINERS "
        u"WHERE UserID = '%s' AND KeptAt = '%s'">
        kContainerLines;
    const platform::Rows kept = db::selectRows(kKept(userId, userId), 2);
    QList<UnsavedSlip> slips;
    for (int row = 0; row < kept.count(); ++row) {
        const QString& keptAt = kept.at(row, 0);
        const bool isSale = kept.at(row, 1) == u"S";
        auto slip = readSlip(isSale ? Working::Sale : Working::Containers, userId.toString(),
                             isSale ? kSaleLines(userId, keptAt) : kContainerLines(userId, keptAt));
        if (!slip) continue;
        slip->keptAt = keptAt;
        slips << *slip;
    }
    return slips;
}

bool takeUp(UnsavedSlip* slip) {
    static constexpr db::Statement<
        u"INSERT INTO TEMP SELECT DDate,Gubun,GCode,GName,'%s',WorkGubun,PCode,PName,JGubun,Box,Bon,MMoney,"
        u"BMoney,YMoney,GMoney FROM KEPTSALE WHERE UserID = '%s' AND KeptAt = '%s'">
        kTakeSale;
    static constexpr db::Statement<
        u"INSERT INTO YTEMP SELECT DDate,GCode,GName,'%s',PCode,PName,FBox,NBox,Bon,YMONEY,GMONEY,YSAMT,"
        u"GSAMT FROM KEPTCONTAINERS WHERE UserID = '%s' AND KeptAt = '%s'">
        kTakeContainers;
    static constexpr db::Statement<u"DELETE TEMP "> kEmptySale;
    static constexpr db::Statement<u"DELETE YTEMP "> kEmptyContainers;
    const bool isSale = slip->table == Working::Sale;
    db::Transaction transaction;
    const QString junNo = numberOf(*slip);
    if (slip->belongsToSale && !takeUpSale(transaction, *slip)) return false;
    if (!transaction.run(isSale ? kEmptySale() : kEmptyContainers()) ||
        !transaction.run(isSale ? kTakeSale(junNo, slip->userId, slip->keptAt)
                                : kTakeContainers(junNo, slip->userId, slip->keptAt)) ||
        !transaction.run(forgetKept(*slip)))
        return false;
    noteOpened(transaction, slip->table, slip->userId, u"1");
    if (!transaction.commit()) return false;
    slip->junNo = junNo;
    return true;
}

void discardKept(const UnsavedSlip& slip) {
    db::execute(forgetKept(slip));
}

}  // namespace books
