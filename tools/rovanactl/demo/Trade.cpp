#include <algorithm>
#include <set>

#include "rovanactl/demo/Parts.h"

namespace admin::demo {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kFewestCustomers = 10;
constexpr int kFewestProducts = 12;
constexpr int kBase36Codes = 36 * 36 * 36 * 36;

/// The prices agreed with a customer lie a little under what he would pay otherwise.
int contractBottle(const Product& product, const Customer& customer, int percent) {
    const int usual = customer.kind == u"일반" ? product.tierA : product.tierB;
    return (usual * percent / 100 + 5) / 10 * 10;
}

/// What the office may sell to a customer, by the product's intended use.
bool isOffered(const Product& product, const Customer& customer) {
    if (!product.isOnSale()) return false;
    if (customer.kind == u"공용") return true;
    return product.use != (customer.kind == u"일반" ? u"유흥" : u"일반");
}

void inventClassMargins(Data* data, Chance& chance) {
    for (int i = 0; i < int(data->customers.size()); ++i) {
        if (data->customers[std::size_t(i)].group != PriceGroup::ClassMargin) continue;
        for (int liquorClass = 0; liquorClass < int(liquorClasses().size()); ++liquorClass) {
            if (chance.inPercent(55)) data->classMargins.push_back({i, liquorClass, chance.between(0, 20)});
        }
    }
}

}  // namespace

QString codeOf(int place, int count, int first) {
    if (count <= 10'000 - first) return u"%1"_s.arg(place + first, 4, 10, QChar(u'0'));
    return u"%1"_s.arg(place, 4, 36, QChar(u'0')).toUpper();
}

QString findFault(const Options& options) {
    if (options.customers < kFewestCustomers || options.customers > kBase36Codes) {
        return u"--customers takes %1 to %2"_s.arg(kFewestCustomers).arg(kBase36Codes);
    }
    if (options.products < kFewestProducts || options.products > kBase36Codes) {
        return u"--products takes %1 to %2"_s.arg(kFewestProducts).arg(kBase36Codes);
    }
    // Soju and beer have up to two products each that are not on sale.
    const qint64 most = qint64(options.customers) * (options.products - 4);
    if (options.prices < 0 || options.prices > most) {
        return u"--prices takes 0 to %1 for that many customers and products"_s.arg(most);
    }
    return {};
}

void inventPrices(Data* data, Chance& chance) {
    std::vector<int> onSale;
    for (int i = 0; i < int(data->products.size()); ++i) {
        if (data->products[std::size_t(i)].isOnSale()) onSale.push_back(i);
    }
    std::vector<int> parties;
    for (int i = 0; i < int(data->customers.size()); ++i) {
        if (data->customers[std::size_t(i)].group == PriceGroup::Tier) parties.push_back(i);
    }
    if (qint64(parties.size()) * qint64(onSale.size()) < data->options.prices) {
        parties.resize(data->customers.size());
        for (int i = 0; i < int(parties.size()); ++i) parties[std::size_t(i)] = i;
    }
    std::vector<int> begins;
    for (std::size_t i = 0; i < parties.size(); ++i)
        begins.push_back(chance.between(0, int(onSale.size()) - 1));

    // Each round gives every party one more product, so no pair comes twice.
    for (int i = 0; i < data->options.prices; ++i) {
        const std::size_t party = std::size_t(i) % parties.size();
        const std::size_t round = std::size_t(i) / parties.size();
        const int product = onSale[(std::size_t(begins[party]) + round) % onSale.size()];
        const int customer = parties[party];
        data->contractPrices.push_back(
            {customer, product,
             contractBottle(data->products[std::size_t(product)], data->customers[std::size_t(customer)],
                            chance.between(91, 98))});
    }
    inventClassMargins(data, chance);
}

void inventOrders(Data* data, Chance& chance) {
    // Four orders for A and two for B, from customers whose prices need no margin.
    for (const auto& [user, orders] : {std::pair{u"A"_s, 4}, std::pair{u"B"_s, 2}}) {
        int left = orders;
        for (int i = 0; i < int(data->customers.size()) && left > 0; ++i) {
            const Customer& customer = data->customers[std::size_t(i)];
            if (customer.user != user || customer.group != PriceGroup::Tier) continue;
            const QString number =
                u"%1"_s.arg((user == u"A" ? 0 : 4) + orders - left + 1, 4, 10, QChar(u'0'));
            std::set<int> products;
            const auto contract = std::ranges::find_if(
                data->contractPrices, [&](const ContractPrice& price) { return price.customer == i; });
            const auto offer = [&](int product) {
                if (isOffered(data->products[std::size_t(product)], customer)) products.insert(product);
            };
            if (contract != data->contractPrices.end()) offer(contract->product);
            const int lines = chance.between(2, 5);
            while (int(products.size()) < lines) offer(chance.between(0, int(data->products.size()) - 1));
            for (const int product : products) {
                const Product& ordered = data->products[std::size_t(product)];
                const int boxes = chance.between(1, ordered.cost < 10'000 ? 6 : 2);
                const int bottles = ordered.bottlesPerBox > 1 ? chance.between(0, 5) : 0;
                data->orders.push_back({number, i, product, boxes, bottles});
            }
            --left;
        }
    }
}

Data invent(const Options& options) {
    Chance chance(options.seed);
    Data data;
    data.options = options;
    data.products = inventProducts(options, chance);
    data.customers = inventCustomers(options, chance);
    inventPrices(&data, chance);
    inventOrders(&data, chance);
    return data;
}

}  // namespace admin::demo
