#include "books/ContainerCarry.h"

#include <algorithm>

#include "platform/Won.h"

namespace books {
namespace {

/// Bounded so that no imported figure, however long, can overflow a sum.
std::int64_t count(const QString& text) {
    constexpr std::int64_t kBound = 1'000'000'000;
    return std::clamp(platform::parseInteger(text), -kBound, kBound);
}

}  // namespace

void ContainerCarry::addSale(const QString& gCode, const QString& pCode, const QString& pName,
                             const QString& box, const QString& bon) {
    addCarried({gCode, pCode, pName, box, bon, {}, {}, {}});
}

void ContainerCarry::addReturn(const QString& gCode, const QString& pCode, const QString& pName,
                               const QString& fBox, const QString& nBox, const QString& bon) {
    addCarried({gCode, pCode, pName, {}, {}, fBox, nBox, bon});
}

void ContainerCarry::addCarried(const QStringList& row) {
    Counts& counts = counts_[{row[0], row[1]}];
    if (counts.PName.isEmpty()) counts.PName = row[2];
    counts.Box += count(row[3]);
    counts.Bon += count(row[4]);
    counts.FBox += count(row[5]);
    counts.NBox += count(row[6]);
    counts.BackBon += count(row[7]);
}

QList<QStringList> ContainerCarry::rows(const QString& until) const {
    QList<QStringList> rows;
    for (const auto& [key, counts] : counts_) {
        const std::int64_t all[] = {counts.Box, counts.Bon, counts.FBox, counts.NBox, counts.BackBon};
        if (std::ranges::count(all, 0) == std::ssize(all)) continue;
        QStringList row{key.first, key.second, counts.PName};
        for (const std::int64_t each : all) row << QString::number(each);
        rows << (row << until);
    }
    return rows;
}

}  // namespace books
