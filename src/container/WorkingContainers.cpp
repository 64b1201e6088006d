#include "container/WorkingContainers.h"

#include "books/UnsavedSlip.h"
#include "container/ContainerProduct.h"
#include "db/Records.h"

namespace container {
namespace {

using platform::parseInteger;
using platform::parseWon;
using platform::Won;

constexpr db::Statement<u"DELETE YTEMP "> kEmpty;
constexpr db::Statement<
    u"INSERT INTO YTEMP (DDate,GCode,GName,JunNo,PCode,PName,FBox,NBox,Bon,YMONEY,GMONEY,YSAMT,GSAMT) "
    u"VALUES ('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s')">
    kInsert;
constexpr db::Statement<u"DELETE YTEMP WHERE PCode= '%s' and FBox = '%s' and NBox = '%s' and Bon = '%s'">
    kDelete;

/// The columns that a line keeps when its counts or amounts change; they are the first of both.
constexpr std::size_t kKeptColumns = 6;
constexpr qsizetype kLineColumns = 10;

db::Sql insertOf(const ContainerLine& line) {
    return db::withColumns(kInsert, kContainerLineColumns, line);
}

/// Reads the line, deletes it and inserts what `change(line, its amounts)` makes of it.
template <typename Change>
bool replaceLine(const ContainerKey& key, Change&& change) {
    // Both money columns come twice, the fees not at all: these are read with the amounts.
    static constexpr db::Statement<
        u"SELECT DDate,GCode,GName,JunNo,PCode,PName,YMoney,GMoney,YMoney, GMoney  FROM YTEMP WHERE PCode= "
        u"'%s' and FBox = '%s' and NBox = '%s' and Bon = '%s'">
        kLine;
    db::Transaction transaction(db::Survives::ProcessEnd);
    const auto row = db::firstRow(kLine(key.PCode, key.FBox, key.NBox, key.Bon));
    auto amounts = lineAmounts(key);
    if (!row || row->size() != kLineColumns || !amounts) return false;
    ContainerLine line;
    for (std::size_t i = 0; i < kKeptColumns; ++i) line.*kContainerLineColumns[i] = row->at(qsizetype(i));
    line.FBox = key.FBox;
    line.NBox = key.NBox;
    line.Bon = key.Bon;
    change(&line, &*amounts);
    line.setAmounts(*amounts);
    return transaction.run(kDelete(key.PCode, key.FBox, key.NBox, key.Bon)) &&
           transaction.run(insertOf(line)) && books::commitChange(transaction, books::Working::Containers);
}

}  // namespace

bool reloadSlip(QStringView userId, QStringView workDate, QStringView junNo) {
    static constexpr db::Statement<
        u"SELECT DDate, GCode, GName, JunNo, PCode, PName, FBox, NBox, Bon, YMONEY, GMONEY, YSAMT, GSAMT "
        u"FROM YTM WHERE USERID= '%s' and DDate = '%s' and JunNo = '%s' ORDER BY JunNo DESC">
        kSaved;
    books::noteOpened(books::Working::Containers, userId);
    return db::refill(kEmpty(), kSaved(userId, workDate, junNo), kInsert, kContainerLineColumns);
}

void emptySlip() {
    db::changeWorkingTable(kEmpty());
}

bool isOtherCustomers(QStringView gCode) {
    static constexpr db::Statement<u"SELECT GName FROM YTEMP WHERE GCode <> '%s'"> kOthers;
    return db::hasRow(kOthers(gCode));
}

platform::Rows workingLines() {
    static constexpr db::Statement<u"SELECT PCode,PName, fBox, nBox, Bon FROM YTEMP ORDER BY PCode DESC">
        kLines;
    return db::selectRows(kLines(), 5);
}

ContainerKey keyAt(const platform::Rows& lines, int row) {
    return {lines.cell(row, 0), lines.cell(row, 2), lines.cell(row, 3), lines.cell(row, 4)};
}

ContainerAmounts workingSums() {
    static constexpr db::Statement<u"SELECT YMONEY,GMONEY,YSAMT,GSAMT FROM YTEMP"> kWorkingAmounts;
    ContainerAmounts sums;
    db::forEachRow(kWorkingAmounts(), [&](db::CVORecordset& row) {
        const auto won = [&](int column) { return parseWon(row.GetFieldString(column)); };
        sums += {won(0), won(1), won(2), won(3)};
    });
    return sums;
}

QList<books::ContainerReturn> workingReturns() {
    const platform::Rows lines = workingLines();
    QList<books::ContainerReturn> returns;
    for (int row = 0; row < lines.count(); ++row) {
        const ContainerCounts counts = keyAt(lines, row).counts();
        returns.append(
            {lines.at(row, 0), lines.at(row, 1), counts.emptyCrates, counts.filledCrates, counts.bottles});
    }
    return returns;
}

QList<books::ContainerBalance> workingBalances(QStringView gCode, QStringView date, QStringView junNo,
                                               QStringView userId) {
    return books::containerBalances(gCode, date, junNo, userId, workingReturns());
}

std::optional<ContainerAmounts> lineAmounts(const ContainerKey& key) {
    // There is no blank before the last AND.
    static constexpr db::Statement<
        u"SELECT YMONEY,GMONEY,YSAMT,GSAMT FROM YTEMP WHERE PCode = '%s' AND FBox = '%s' AND NBox = '%s'AND "
        u"Bon = '%s'   ">
        kAmounts;
    const auto row = db::firstRow(kAmounts(key.PCode, key.FBox, key.NBox, key.Bon));
    if (!row) return std::nullopt;
    const auto won = [&](int column) { return parseWon(row->at(column)); };
    return ContainerAmounts{won(0), won(1), won(2), won(3)};
}

bool insertLine(const ContainerLine& line) {
    return books::changeWorkingSlip(books::Working::Containers, insertOf(line));
}

bool addProduct(const books::SlipIdentity& slip, const QString& gName, const QString& pCode,
                const ContainerCounts& counts) {
    const ContainerProduct product = containerProduct(pCode).value_or(ContainerProduct{});
    ContainerLine line;
    line.DDate = slip.date;
    line.GCode = slip.gCode;
    line.GName = gName;
    line.JunNo = slip.junNo;
    line.PCode = pCode;
    line.PName = product.pname;
    line.setCounts(counts);
    line.setAmounts(containerAmounts(counts, product.prices));
    return insertLine(line);
}

bool recount(const ContainerKey& key, const ContainerCounts& counts) {
    const auto product = containerProduct(key.PCode);
    // Without its prices the line would be worth nothing.
    return product && replaceCounts(key, counts, containerAmounts(counts, product->prices));
}

bool replaceCounts(const ContainerKey& key, const ContainerCounts& counts, const ContainerAmounts& amounts) {
    return replaceLine(key, [&](ContainerLine* line, ContainerAmounts* lineAmounts) {
        line->setCounts(counts);
        *lineAmounts = amounts;
    });
}

bool replaceAmount(const ContainerKey& key, Won ContainerAmounts::*amount, Won keyed) {
    return replaceLine(key,
                       [&](ContainerLine*, ContainerAmounts* lineAmounts) { lineAmounts->*amount = keyed; });
}

void deleteLine(const ContainerKey& key) {
    books::changeWorkingSlip(books::Working::Containers, kDelete(key.PCode, key.FBox, key.NBox, key.Bon));
}

}  // namespace container
