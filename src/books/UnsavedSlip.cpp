#include "books/UnsavedSlip.h"

#include "db/Query.h"

namespace books {
namespace {

constexpr db::Statement<u"UPDATE UNSAVED SET Changed = '%s' WHERE Slip = '%s'"> kMark;
constexpr db::Statement<u"SELECT UserID FROM UNSAVED WHERE Slip = '%s' AND Changed = '1'"> kChanged;

constexpr QStringView tableName(Working table) {
    return table == Working::Sale ? u"TEMP" : u"YTEMP";
}

std::optional<UnsavedSlip> findUnsaved(Working table) {
    static constexpr db::Statement<u"SELECT DDate,GCode,GName,JunNo FROM TEMP"> kSaleLines;
    static constexpr db::Statement<u"SELECT DDate,GCode,GName,JunNo FROM YTEMP"> kContainerLines;
    static constexpr db::Statement<
        u"SELECT JunNo FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode = '%s'">
        kSale;
    const auto user = db::firstRow(kChanged(tableName(table)));
    if (!user) return std::nullopt;
    UnsavedSlip slip;
    slip.table = table;
    slip.userId = user->value(0);
    slip.lines =
        db::forEachRow(table == Working::Sale ? kSaleLines() : kContainerLines(), [&](db::CVORecordset& row) {
            slip.date = row.GetFieldString(0);
            slip.gCode = row.GetFieldString(1);
            slip.gName = row.GetFieldString(2);
            slip.junNo = row.GetFieldString(3);
        });
    if (slip.lines <= 0) return std::nullopt;
    slip.belongsToSale =
        table == Working::Containers && db::hasRow(kSale(slip.date, slip.junNo, slip.userId, slip.gCode));
    return slip;
}

}  // namespace

void noteOpened(Working table, QStringView userId) {
    static constexpr db::Statement<u"DELETE UNSAVED WHERE Slip = '%s'"> kForget;
    static constexpr db::Statement<u"INSERT INTO UNSAVED (Slip,UserID,Changed) VALUES ('%s','%s','')">
        kOpened;
    db::Transaction transaction(db::Survives::ProcessEnd);
    // Without its table nothing more is said than the first statement's trace.
    if (transaction.run(kForget(tableName(table))) && transaction.run(kOpened(tableName(table), userId)))
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

}  // namespace books
