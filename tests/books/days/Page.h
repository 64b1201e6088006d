#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

/// The books of a random day as plain values: what stands in the tables, read row by row by the driver, and
/// what the judge says must stand there. Nothing here knows the code that it judges.
namespace days {

using Won = std::int64_t;

/// Under what a slip stands.
struct Key {
    std::string date, number, user;
    auto operator<=>(const Key&) const = default;
};

/// Whose visit it is: a number may hold other customers' rows.
struct Visit {
    Key key;
    std::string customer;
    auto operator<=>(const Visit&) const = default;
};

/// A line of MTM.
struct Goods {
    Visit visit;
    std::string product;
    int boxes = 0, bottles = 0;
    Won supply = 0, vat = 0, crates = 0, deposit = 0;
    auto operator<=>(const Goods&) const = default;
};

/// A line of YTM. The handling fees are not part of its worth.
struct Empties {
    Visit visit;
    std::string product;
    int full = 0, mixed = 0, bottles = 0;
    Won crates = 0, deposit = 0;
    auto operator<=>(const Empties&) const = default;
};

/// The amounts of the collection screen, or of a row of MTMOK.
struct Amounts {
    Won sales = 0, supply = 0, vat = 0, other = 0, deposits = 0;
    Won recovery = 0, card = 0, cash = 0, unpaid = 0, earlier = 0;
    auto operator<=>(const Amounts&) const = default;

    Won total() const { return sales + deposits; }
    Won due() const { return total() - recovery; }
    /// Empties beyond the total that a settling button booked against the debt; its cash is 0.
    bool bookedByButton() const {
        return due() < 0 && card == 0 && cash == 0 && unpaid == 0 && earlier == -due();
    }
    /// By how much this settlement moves the customer's debt. A booked excess counts once.
    Won effect() const { return bookedByButton() ? due() : due() - card - cash - earlier; }
};

/// A row of MTMOK.
struct Collection {
    Visit visit;
    Amounts amounts;
    std::string approval;
    bool isSimple = false;  ///< sale and payment in one: no debt moves
    bool isSum = true;      ///< its sums are those of its other columns
    auto operator<=>(const Collection&) const = default;

    Won effect() const { return isSimple ? 0 : amounts.effect(); }
};

/// A row of PAYJOURNAL.
struct Payment {
    std::string message;  ///< its number of the exchange
    Visit visit;
    std::string state;
    Won amount = 0;
    std::string approval;
    auto operator<=>(const Payment&) const = default;

    bool open() const { return state == "sent" || state == "unknown"; }
};

/// The tables, each in the order of its rows' values.
struct Page {
    std::vector<Goods> goods;
    std::vector<Empties> empties;
    std::vector<Collection> collections;
    std::vector<Payment> payments;
    std::map<std::string, Won> debt;
    bool operator==(const Page&) const = default;
};

/// What the host has charged.
struct Charge {
    std::string message, approval;
    Won amount = 0;
    Visit visit;
};

std::string words(const Amounts& amounts);
std::string words(const Visit& visit);

}  // namespace days
