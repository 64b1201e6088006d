#pragma once

#include <random>

#include "rovanactl/demo/Demo.h"

/// The steps of invent(), which share one stream of chance.
namespace admin::demo {

/// Chance that gives the same on every machine; the distributions of the standard library do not.
class Chance {
  public:
    explicit Chance(quint64 seed) : engine_(seed) {}

    /// A number from `first` to `last`.
    int between(int first, int last) { return first + int(engine_() % quint64(last - first + 1)); }

    /// True in `percent` of 100 cases.
    bool inPercent(int percent) { return between(1, 100) <= percent; }

    template <typename List>
    auto oneOf(const List& list) {
        return *(std::begin(list) + between(0, int(std::size(list)) - 1));
    }

  private:
    std::mt19937_64 engine_;
};

/// A code of four characters for the place in a list of `count`: decimal from `first`, base 36 where four
/// digits do not reach.
QString codeOf(int place, int count, int first);

std::vector<Product> inventProducts(const Options& options, Chance& chance);
std::vector<Customer> inventCustomers(const Options& options, Chance& chance);
void inventPrices(Data* data, Chance& chance);
void inventOrders(Data* data, Chance& chance);

}  // namespace admin::demo
