#pragma once

#include <algorithm>

#include "Judge.h"

/// How the judge looks up rows and reports what two tables have not in common.
namespace days {

std::string words(const Goods& row);
std::string words(const Empties& row);
std::string words(const Collection& row);

/// What the visit's empties are worth, and the deposits of its goods.
Won worth(const std::vector<Empties>& lines, const Visit& visit);
Won depositsOf(const Page& page, const Visit& visit);

bool hasMessage(const Page& page, const std::string& message);

template <typename Row>
const Row* find(const std::vector<Row>& rows, const Visit& visit) {
    const auto at = std::ranges::find(rows, visit, &Row::visit);
    return at == rows.end() ? nullptr : &*at;
}

template <typename Row>
void erase(std::vector<Row>& rows, const Key& key) {
    std::erase_if(rows, [&key](const Row& row) { return row.visit.key == key; });
}

template <typename Row>
void eraseOfAll(std::vector<Row>& rows, const Key& key) {
    std::erase_if(rows, [&key](const Row& row) {
        return row.visit.key.date == key.date && row.visit.key.number == key.number;
    });
}

/// Rows that were found under a number given twice keep everything but that number: from 4001 on, or from
/// 7001.
template <typename Row>
std::vector<Row> numberless(std::vector<Row> rows, const std::set<Visit>& moved) {
    for (Row& row : rows) {
        const std::string& number = row.visit.key.number;
        if (moved.contains(row.visit) || (number > "4000" && number < "4999")) row.visit.key.number = "moved";
    }
    std::ranges::sort(rows);
    return rows;
}

/// The first row that only one side has.
template <typename Row>
std::string difference(const std::vector<Row>& want, const std::vector<Row>& is) {
    std::vector<Row> missing, surplus;
    std::ranges::set_difference(want, is, std::back_inserter(missing));
    std::ranges::set_difference(is, want, std::back_inserter(surplus));
    std::string text;
    for (const Row& row : missing) text += " must be: " + words(row) + ";";
    for (const Row& row : surplus) text += " is: " + words(row) + ";";
    return text;
}

}  // namespace days
