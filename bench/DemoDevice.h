#pragma once

#include <QString>

namespace bench {

inline constexpr int kManyProducts = 50'000;
inline constexpr int kManySlips = 100'000;

/// Makes a demonstration device for a day's work, with the office's files loaded.
void makeDemonstration(const QString& device);

/// Adds 50,000 products of every class, 5,000 customers of the salesman A, all of one consonant, and `slips`
/// sold and settled on the days and by the salesmen before.
void enlarge(const QString& device, int slips);

/// The commonest visit, as a script: login, a customer from the list, two products from the search, paid in
/// cash, back at the menu. On such a device it can be played over and over: it deletes its slip again.
QString commonestVisit();

}  // namespace bench
