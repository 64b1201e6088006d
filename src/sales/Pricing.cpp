#include "sales/Pricing.h"

#include <QVarLengthArray>
#include <charconv>
#include <cmath>

#include "db/Query.h"
#include "db/Statement.h"
#include "db/Transaction.h"
#include "sales/ProductQuery.h"

namespace sales {

using platform::Won;

namespace {

constexpr db::Statement<u"SELECT Majin FROM GARAEMAJIN WHERE GCODE= '%s' AND GUBUN= '%s'  "> kClassMargin;
// Under a class margin the VAT of boxes is that of bottles: this system's price list is read so.
constexpr db::Statement<
    u"SELECT BoxSMoney, BonSMoney, BonBMoney, BonBMoney,YGMoney1,YGMoney2, GBonMoney2 "
    u"FROM PUMMOK WHERE PCODE= '%s' ">
    kClassMarginPrices;
constexpr db::Statement<
    u"SELECT BoxSMoney, BonSMoney, BoxBMoney, BonBMoney, YGMoney1, YGMoney2,GBonMoney2 "
    u"FROM PUMMOK WHERE PCODE= '%s' ">
    kCustomerMarginPrices;
constexpr db::Statement<
    u"SELECT ABoxMMoney,BBoxMMoney,ABonMMoney,BBonMMoney,ABoxBMoney,BBoxBMoney,ABonBMoney,"
    u"BBonBMoney,YGMoney1,YGMoney2,GBonMoney2 FROM PUMMOK WHERE PCODE= '%s' ">
    kTierPrices;

constexpr QStringView kTierAKind = u"일반";

/// Calls `readRow` on the SELECT's first row; false when there is none.
template <typename ReadRow>
bool readFirst(db::CVOConnection& connection, const db::Sql& select, ReadRow&& readRow) {
    db::CVORecordset recordset(connection);
    if (!recordset.Open(select, db::kKeyset, db::kReadOnly) || recordset.EOF()) return false;
    readRow(recordset);
    return true;
}

Won wonAt(db::CVORecordset& recordset, int column) {
    return platform::parseWon(recordset.GetFieldString(column));
}

Deposits depositsAt(db::CVORecordset& recordset, int firstColumn) {
    return {wonAt(recordset, firstColumn), wonAt(recordset, firstColumn + 1),
            wonAt(recordset, firstColumn + 2)};
}

/// The number at the start of the column's text, a fraction included; 0 for a text without one.
double realAt(db::CVORecordset& recordset, int column) {
    const QString text = recordset.GetFieldString(column);
    QVarLengthArray<char, 32> digits;
    for (const QChar each : QStringView(text).trimmed()) digits.append(each.toLatin1());
    double number = 0;
    std::from_chars(digits.begin(), digits.end(), number);
    return std::isfinite(number) ? number : 0;
}

UnitPrices costPricesAt(db::CVORecordset& recordset) {
    return {realAt(recordset, 0), realAt(recordset, 1), realAt(recordset, 2), realAt(recordset, 3),
            depositsAt(recordset, 4)};
}

/// The amount that "%.f" and reading it back leave of a whole-numbered double: saturated at 64 bits.
Won wonOf(double whole) {
    constexpr double kLimit = 9223372036854775808.0;  // 2 to the 63rd
    if (whole >= kLimit) return Won(INT64_MAX);
    if (whole <= -kLimit) return Won(INT64_MIN);
    return Won(std::int64_t(whole));
}

Won roundedUp(std::int64_t count, double price) {
    return wonOf(std::ceil(double(count) * price));
}

LineAmounts depositAmounts(const Deposits& deposits, std::int64_t boxes, std::int64_t bottles) {
    return {.supply = {},
            .vat = {},
            .crateDeposit = boxes * deposits.YGMoney1,
            .bottleDeposit = boxes * deposits.YGMoney2 + bottles * deposits.GBonMoney2};
}

}  // namespace

LineAmounts contractAmounts(const ContractPrices& prices, std::int64_t boxes, std::int64_t bottles) {
    return {.supply = boxes * prices.boxmoney + bottles * prices.bonmoney,
            .vat = boxes * prices.boxbmoney + bottles * prices.bonbmoney,
            .crateDeposit = boxes * prices.ysmoney,
            .bottleDeposit = boxes * prices.ysboxmoney + bottles * prices.ysbonmoney};
}

LineAmounts marginAmounts(const UnitPrices& prices, double marginPercent, std::int64_t boxes,
                          std::int64_t bottles) {
    const double margin = marginPercent * 0.01;
    const auto raised = [&](double price) { return price + price * margin; };
    LineAmounts amounts = depositAmounts(prices.deposits, boxes, bottles);
    amounts.supply =
        roundedUp(boxes, raised(prices.boxSupply)) + roundedUp(bottles, raised(prices.bottleSupply));
    amounts.vat = roundedUp(boxes, raised(prices.boxVat)) + roundedUp(bottles, raised(prices.bottleVat));
    return amounts;
}

LineAmounts tierAmounts(const UnitPrices& prices, std::int64_t boxes, std::int64_t bottles) {
    return marginAmounts(prices, 0, boxes, bottles);
}

PricedLine priceLine(QStringView gcode, QStringView customerKind, QStringView pcode, std::int64_t boxes,
                     std::int64_t bottles) {
    static constexpr db::Statement<u"SELECT * FROM GARAEDANGA WHERE GCODE= '%s' and PCODE = '%s' "> kContract;
    static constexpr db::Statement<u"SELECT Majin FROM GARAE WHERE GCODE= '%s' "> kCustomerMargin;
    // One state of the tables for the whole price, also while the office's files are loaded.
    db::ReadScope scope;
    db::CVOConnection& connection = scope.connection();

    ContractPrices contract;
    if (readFirst(connection, kContract(gcode, pcode), [&](db::CVORecordset& row) {
            contract = {wonAt(row, 3), wonAt(row, 4), wonAt(row, 5), wonAt(row, 6),
                        wonAt(row, 7), wonAt(row, 8), wonAt(row, 9)};
        })) {
        const auto one = [](Won won) { return double(won.value()); };
        return {PriceSource::Contract,
                contractAmounts(contract, boxes, bottles),
                {one(contract.boxmoney),
                 one(contract.bonmoney),
                 one(contract.boxbmoney),
                 one(contract.bonbmoney),
                 {}}};
    }

    QString productClass;
    readFirst(connection, productNameSearch(pcode),
              [&](db::CVORecordset& row) { productClass = row.GetFieldString(1); });
    double margin = 0;
    const auto readMargin = [&](db::CVORecordset& row) { margin = realAt(row, 0); };
    UnitPrices prices;
    const auto readCostPrices = [&](db::CVORecordset& row) { prices = costPricesAt(row); };
    if (readFirst(connection, kClassMargin(gcode, productClass), readMargin)) {
        readFirst(connection, kClassMarginPrices(pcode), readCostPrices);
        return {PriceSource::ClassMargin, marginAmounts(prices, margin, boxes, bottles), prices, margin};
    }

    readFirst(connection, kCustomerMargin(gcode), readMargin);
    if (margin != 0) {
        readFirst(connection, kCustomerMarginPrices(pcode), readCostPrices);
        return {PriceSource::CustomerMargin, marginAmounts(prices, margin, boxes, bottles), prices, margin};
    }

    const bool isTierA = customerKind == kTierAKind;
    readFirst(connection, kTierPrices(pcode), [&](db::CVORecordset& row) {
        const int tier = isTierA ? 0 : 1;
        prices = {realAt(row, tier), realAt(row, 2 + tier), realAt(row, 4 + tier), realAt(row, 6 + tier),
                  depositsAt(row, 8)};
    });
    return {PriceSource::Tier, tierAmounts(prices, boxes, bottles), prices, 0, isTierA};
}

UnitCost unitCost(QStringView gcode, QStringView customerKind, QStringView pcode) {
    const PricedLine line = priceLine(gcode, customerKind, pcode, 0, 0);
    const auto cost = [&](int boxes, int bottles) {
        return marginAmounts(line.prices, line.marginPercent, boxes, bottles).subtotal();
    };
    return {cost(1, 0), cost(0, 1)};
}

}  // namespace sales
