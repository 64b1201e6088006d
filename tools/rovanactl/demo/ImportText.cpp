#include <algorithm>

#include "platform/CodePage.h"
#include "rovanactl/demo/Demo.h"

namespace admin::demo {
namespace {

using namespace Qt::Literals::StringLiterals;

QString text(int number) {
    return QString::number(number);
}

int vatOf(int supply) {
    return supply / 10;
}

QStringList fields(const Data&, const Customer& customer) {
    return {customer.code,
            customer.name,
            customer.owner,
            customer.lastTrade,
            customer.registration,
            text(customer.margin),
            customer.lastTrade,
            text(customer.receivable),
            text(0),
            customer.address,
            customer.kind,
            customer.telephone,
            u"1"_s,
            seekKey(customer.name),
            customer.user,
            u""_s};
}

QStringList fields(const Data&, const Product& product) {
    QStringList row{product.code, product.name, product.use, product.size, text(product.bottlesPerBox)};
    // Box and bottle, supply and VAT; the cost prices name the supply "S", the two tiers "M".
    for (const int bottle : {product.cost, product.tierA, product.tierB}) {
        const int box = bottle * product.bottlesPerBox;
        row << text(box) << text(vatOf(box)) << text(bottle) << text(vatOf(bottle));
    }
    row << text(product.crateDeposit) << text(product.bottleDeposit * product.bottlesPerBox)
        << text(product.crateFee) << text(product.bottleFee) << text(product.crateDeposit)
        << text(product.bottleDeposit);
    row << liquorClasses()[std::size_t(product.liquorClass)].code.toString() << u"1"_s << product.mark
        << seekKey(product.name);
    return row;
}

QStringList fields(const Data& data, const ContractPrice& price) {
    const Product& product = data.products[std::size_t(price.product)];
    const int box = price.bottle * product.bottlesPerBox;
    return {data.customers[std::size_t(price.customer)].code,
            product.code,
            text(0),
            text(box),
            text(vatOf(box)),
            text(price.bottle),
            text(vatOf(price.bottle)),
            text(product.crateDeposit),
            text(product.bottleDeposit * product.bottlesPerBox),
            text(product.bottleDeposit)};
}

QStringList fields(const Data& data, const ClassMargin& margin) {
    return {data.customers[std::size_t(margin.customer)].code,
            liquorClasses()[std::size_t(margin.liquorClass)].code.toString(), text(margin.percent)};
}

QStringList fields(const Data& data, const OrderLine& line) {
    const Product& product = data.products[std::size_t(line.product)];
    const Customer& customer = data.customers[std::size_t(line.customer)];
    const auto contract = std::ranges::find_if(data.contractPrices, [&](const ContractPrice& price) {
        return price.customer == line.customer && price.product == line.product;
    });
    int bottle = customer.kind == u"일반" ? product.tierA : product.tierB;
    if (contract != data.contractPrices.end()) bottle = contract->bottle;
    const int bottles = line.boxes * product.bottlesPerBox + line.bottles;
    return {data.options.date,
            u"매출"_s,
            customer.code,
            customer.name,
            line.number,
            u"미발행"_s,
            product.code,
            product.name,
            liquorClasses()[std::size_t(product.liquorClass)].code.toString(),
            text(line.boxes),
            text(line.bottles),
            text(bottles * bottle),
            text(bottles * vatOf(bottle)),
            text(line.boxes * product.crateDeposit),
            text(bottles * product.bottleDeposit),
            customer.user};
}

/// Adds the row's line; false when the line would not be cut back into the same fields.
bool addLine(const db::ImportFile& file, const QStringList& row, QString* lines) {
    const QString line = row.join(u'|') + u'|';
    std::vector<QStringView> cut;
    db::cutImportLine(file, line, &cut);
    if (!std::ranges::equal(cut, row) || line.contains(u'\'')) return false;
    *lines += line + u"\r\n"_s;
    return true;
}

template <typename Rows>
std::optional<QByteArray> encodeRows(const Data& data, const db::ImportFile& file, const Rows& rows) {
    QString lines;
    for (const auto& row : rows) {
        if (!addLine(file, fields(data, row), &lines)) return std::nullopt;
    }
    return platform::codepage::encode(lines);
}

}  // namespace

std::optional<QByteArray> importFileContent(const Data& data, const db::ImportFile& file) {
    if (file.fileName == u"MTM.RVN") return encodeRows(data, file, data.orders);
    if (file.fileName == u"GARAE.RVN") return encodeRows(data, file, data.customers);
    if (file.fileName == u"PUMMOK.RVN") return encodeRows(data, file, data.products);
    if (file.fileName == u"GARAEDANGA.RVN") return encodeRows(data, file, data.contractPrices);
    if (file.fileName == u"GARAEMAJIN.RVN") return encodeRows(data, file, data.classMargins);
    return std::nullopt;
}

}  // namespace admin::demo
