#include "books/SaleAmounts.h"

#include "books/PayableTotal.h"
#include "db/Query.h"

namespace books {
namespace {

using platform::Won;

constexpr db::Statement<
    u"SELECT MMoney, BMoney, YMoney, GMoney FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' "
    u"AND GCode = '%s'">
    kLines;
constexpr db::Statement<u"SELECT vatMode FROM PDAUSER WHERE userID = '%s'"> kVatMode;

}  // namespace

SaleAmounts operator-(const SaleAmounts& after, const SaleAmounts& before) {
    return {after.supply - before.supply, after.vat - before.vat, after.crateDeposit - before.crateDeposit,
            after.bottleDeposit - before.bottleDeposit};
}

std::optional<SaleAmounts> savedSale(QStringView date, QStringView junNo, QStringView userId,
                                     QStringView gCode) {
    SaleAmounts sale;
    const int lines = db::forEachRow(kLines(date, junNo, userId, gCode), [&](db::CVORecordset& row) {
        const auto won = [&](int column) { return platform::parseWon(row.GetFieldString(column)); };
        sale.supply += won(0);
        sale.vat += won(1);
        sale.crateDeposit += won(2);
        sale.bottleDeposit += won(3);
    });
    if (lines <= 0) return std::nullopt;
    const auto user = db::firstRow(kVatMode(userId));
    sale.vat = payableTotal(sale.supply, sale.vat, user ? user->first() : QString()) - sale.supply;
    return sale;
}

}  // namespace books
