#include "sales/WorkingSlip.h"

#include <algorithm>

#include "books/UnsavedSlip.h"
#include "db/Records.h"

namespace sales {
namespace {

constexpr db::Statement<u"DELETE TEMP "> kEmpty;
constexpr db::Statement<
    u"INSERT INTO TEMP (DDate,Gubun,GCode,GName,JunNo,WorkGubun,PCode,PName,JGubun, Box,"
    u"Bon,MMoney,BMoney,YMoney,GMoney) VALUES ('%s','%s','%s','%s','%s','%s','%s','%s',"
    u"'%s','%s','%s','%s','%s','%s','%s')">
    kInsert;
constexpr db::Statement<u"SELECT * FROM TEMP"> kAnyLine;
constexpr db::Statement<u"SELECT * FROM TEMP WHERE PCode= '%s' and Box = '%s' and Bon = '%s'"> kLine;
constexpr db::Statement<u"DELETE TEMP WHERE PCode= '%s' and Box = '%s' and Bon = '%s'"> kDelete;

db::Sql insertOf(const SlipLine& line) {
    return db::withColumns(kInsert, kSlipLineColumns, line);
}

/// Reads the line, deletes it and inserts what `change` makes of it.
template <typename Change>
bool replaceLine(const LineKey& key, Change&& change) {
    db::Transaction transaction(db::Survives::ProcessEnd);
    const auto lines = db::selectRecords(kLine(key.PCode, key.Box, key.Bon), kSlipLineColumns);
    // Of two lines alike the working table cannot change one: both would make way for it.
    if (!lines || lines->size() != 1) return false;
    SlipLine line = lines->first();
    change(&line);
    return transaction.run(kDelete(key.PCode, key.Box, key.Bon)) && transaction.run(insertOf(line)) &&
           books::commitChange(transaction, books::Working::Sale);
}

}  // namespace

bool reloadSlip(QStringView userId, QStringView workDate, QStringView junNo) {
    static constexpr db::Statement<
        u"SELECT DDate, Gubun, GCode, GName, JunNo, WorkGubun, PCode, PName, JGubun, Box, Bon, "
        u"MMoney, BMoney, YMoney, GMoney FROM MTM WHERE USERID= '%s' and DDate = '%s' "
        u"and JunNo = '%s' ORDER BY JunNo DESC">
        kSaved;
    books::noteOpened(books::Working::Sale, userId);
    return db::refill(kEmpty(), kSaved(userId, workDate, junNo), kInsert, kSlipLineColumns);
}

std::optional<OpenedSlip> openSlip(QStringView userId, QStringView workDate, QStringView junNo) {
    static constexpr db::Statement<
        u"SELECT GCode,PCode,PName,Box,Bon,MMoney,BMoney,YMoney,GMoney  FROM MTM WHERE "
        u"USERID= '%s' and DDate = '%s' and JunNo = '%s' ORDER BY PCode DESC">
        kSavedToShow;
    if (!reloadSlip(userId, workDate, junNo)) return std::nullopt;
    OpenedSlip slip;
    slip.lines.columns = 4;
    db::forEachRow(kSavedToShow(userId, workDate, junNo), [&](db::CVORecordset& row) {
        slip.GCode = row.GetFieldString(0);
        for (int column = 1; column <= 4; ++column) slip.lines.cells.append(row.GetFieldString(column));
        const auto won = [&](int column) { return platform::parseWon(row.GetFieldString(column)); };
        slip.sums += {won(5), won(6), won(7), won(8)};
    });
    return slip;
}

OpenedSlip resumeSlip() {
    OpenedSlip slip;
    if (const auto line = db::firstRow(kAnyLine())) slip.GCode = line->value(2);
    slip.lines = workingLines();
    slip.sums = workingSums();
    return slip;
}

SlipSums workingSums() {
    static constexpr db::Statement<u"SELECT MMoney,BMoney,YMoney,GMoney FROM TEMP"> kWorkingAmounts;
    SlipSums sums;
    db::forEachRow(kWorkingAmounts(), [&](db::CVORecordset& row) {
        const auto won = [&](int column) { return platform::parseWon(row.GetFieldString(column)); };
        sums += {won(0), won(1), won(2), won(3)};
    });
    return sums;
}

platform::Rows workingLines() {
    static constexpr db::Statement<u"SELECT PCode,PName,Box,Bon FROM TEMP ORDER BY PCode DESC"> kLines;
    return db::selectRows(kLines(), 4);
}

QHash<QStringList, LineDetail> workingDetails() {
    static constexpr db::Statement<
        u"SELECT MMoney, BMoney, YMoney, GMoney, PCode, Box, Bon, PName, "
        u"(SELECT Size FROM PUMMOK WHERE PUMMOK.PCode = TEMP.PCode) FROM TEMP">
        kDetails;
    QHash<QStringList, LineDetail> details;
    db::forEachRow(kDetails(), [&](db::CVORecordset& row) {
        const auto text = [&](int column) { return row.GetFieldString(column); };
        const auto won = [&](int column) { return platform::parseWon(text(column)); };
        const LineAmounts amounts{won(0), won(1), won(2), won(3)};
        details.insert({text(4), text(5), text(6)},
                       {text(7), amounts.total(), amounts.subtotal().isZero(), text(8)});
    });
    return details;
}

LineKey keyAt(const platform::Rows& lines, int row) {
    return {lines.at(row, 0), lines.at(row, 2), lines.at(row, 3)};
}

bool isWorkingSlipEmpty() {
    return !db::hasRow(kAnyLine());
}

std::optional<LineAmounts> lineAmounts(const LineKey& key) {
    static constexpr db::Statement<
        u"SELECT JGubun, MMoney, BMoney, YMoney, GMoney  FROM TEMP WHERE PCode = '%s' "
        u"AND Box = '%s' AND Bon = '%s'   ">
        kAmounts;
    const auto row = db::firstRow(kAmounts(key.PCode, key.Box, key.Bon));
    if (!row) return std::nullopt;
    const auto won = [&](int column) { return platform::parseWon(row->at(column)); };
    return LineAmounts{won(1), won(2), won(3), won(4)};
}

int linesOf(const LineKey& key) {
    return std::max(0, db::forEachRow(kLine(key.PCode, key.Box, key.Bon), [](db::CVORecordset&) {}));
}

bool insertLine(const SlipLine& line) {
    return books::changeWorkingSlip(books::Working::Sale, insertOf(line));
}

bool replaceLines(const QList<SlipLine>& lines, QStringList* refused) {
    db::Transaction transaction(db::Survives::ProcessEnd);
    if (!transaction.run(kEmpty())) return false;
    for (const SlipLine& line : lines) {
        const db::Sql insert = insertOf(line);
        if (!insert.isWellFormed()) {
            refused->append(line.PName);
        } else if (!transaction.run(insert)) {
            return false;
        }
    }
    return books::commitChange(transaction, books::Working::Sale);
}

bool replaceQuantities(const LineKey& key, std::int64_t boxes, std::int64_t bottles,
                       const LineAmounts& amounts) {
    return replaceLine(key, [&](SlipLine* line) {
        line->Box = QString::number(boxes);
        line->Bon = QString::number(bottles);
        line->setAmounts(amounts);
    });
}

bool replaceAmounts(const LineKey& key, const LineAmounts& amounts) {
    return replaceLine(key, [&](SlipLine* line) {
        line->MMoney = platform::formatWon(amounts.supply);
        line->BMoney = platform::formatWon(amounts.vat);
    });
}

void deleteLine(const LineKey& key) {
    books::changeWorkingSlip(books::Working::Sale, kDelete(key.PCode, key.Box, key.Bon));
}

}  // namespace sales
