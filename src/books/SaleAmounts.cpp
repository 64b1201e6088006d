#include "books/SaleAmounts.h"

#include "books/PayableTotal.h"
#include "db/Query.h"

namespace books {
namespace {

using platform::Won;

void addLine(SaleAmounts& sale, db::CVORecordset& line) {
    const auto won = [&](int column) { return platform::parseWon(line.GetFieldString(column)); };
    sale.supply += won(0);
    sale.vat += won(1);
    sale.crateDeposit += won(2);
    sale.bottleDeposit += won(3);
}

}  // namespace

QString vatMode(QStringView userId) {
    static constexpr db::Statement<u"SELECT vatMode FROM PDAUSER WHERE userID = '%s'"> kVatMode;
    const auto user = db::firstRow(kVatMode(userId));
    return user ? user->first() : QString();
}

SaleAmounts operator-(const SaleAmounts& after, const SaleAmounts& before) {
    return {after.supply - before.supply, after.vat - before.vat, after.crateDeposit - before.crateDeposit,
            after.bottleDeposit - before.bottleDeposit};
}

std::optional<SaleAmounts> savedSale(QStringView date, QStringView junNo, QStringView userId,
                                     QStringView gCode) {
    static constexpr db::Statement<
        u"SELECT MMoney, BMoney, YMoney, GMoney FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = "
        u"'%s' AND GCode = '%s'">
        kLines;
    SaleAmounts sale;
    const int lines = db::forEachRow(kLines(date, junNo, userId, gCode),
                                     [&](db::CVORecordset& row) { addLine(sale, row); });
    if (lines <= 0) return std::nullopt;
    sale.vat = payableVat(sale.supply, sale.vat, vatMode(userId));
    return sale;
}

QHash<QString, SaleAmounts> salesOfDay(QStringView date, QStringView userId) {
    static constexpr db::Statement<
        u"SELECT MMoney, BMoney, YMoney, GMoney, JunNo FROM MTM WHERE UserID = '%s' AND DDate = '%s'">
        kLinesOfDay;
    QHash<QString, SaleAmounts> sales;
    db::forEachRow(kLinesOfDay(userId, date),
                   [&](db::CVORecordset& row) { addLine(sales[row.GetFieldString(4)], row); });
    const QString mode = vatMode(userId);
    for (SaleAmounts& sale : sales) sale.vat = payableVat(sale.supply, sale.vat, mode);
    return sales;
}

}  // namespace books
