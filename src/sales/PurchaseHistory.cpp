#include "sales/PurchaseHistory.h"

#include <QMap>
#include <QSet>
#include <QStringList>
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "db/Archives.h"
#include "db/Query.h"
#include "db/Statement.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;
using platform::parseInteger;
using platform::parseWon;

namespace {

constexpr QStringView kArchived =
    u"SELECT DDate, JunNo, UserID, PCode, PName, Box, Bon, MMoney, BMoney, YMoney, GMoney FROM MTM "
    u"WHERE GCode = ? AND DDate <= ? ORDER BY DDate DESC, DTime DESC, JunNo DESC, UserID, PCode DESC";
constexpr int kColumns = 11;

/// count * of + more; an office's figures may be of any length.
std::int64_t saturated(std::int64_t count, std::int64_t of, std::int64_t more) {
    return (count * platform::Won(of) + platform::Won(more)).value();
}

/// All of it in bottles; a box of unknown contents counts as one.
std::int64_t inBottles(const Quantities& quantities, std::int64_t bottlesPerBox) {
    return saturated(quantities.boxes, std::max<std::int64_t>(bottlesPerBox, 1), quantities.bottles);
}

}  // namespace

/// A line of a slip, as both statements select it.
struct PurchaseHistory::Line {
    QStringList texts;

    std::int64_t number(int column) const { return parseInteger(texts[column]); }
    LineAmounts amounts() const {
        return {parseWon(texts[7]), parseWon(texts[8]), parseWon(texts[9]), parseWon(texts[10])};
    }
};

Quantities operator+(const Quantities& a, const Quantities& b) {
    return {saturated(1, a.boxes, b.boxes), saturated(1, a.bottles, b.bottles)};
}

QString quantityText(const Quantities& quantities) {
    QStringList parts;
    if (quantities.boxes != 0) parts << u"%1상자"_s.arg(quantities.boxes);
    if (quantities.bottles != 0 || parts.isEmpty()) parts << u"%1본"_s.arg(quantities.bottles);
    return parts.join(u' ');
}

QString shortQuantityText(const Quantities& quantities) {
    return u"%1/%2"_s.arg(quantities.boxes).arg(quantities.bottles);
}

void PurchaseHistory::add(const Line& line) {
    const auto isOfSlip = [&](const PastSlip& slip) {
        return slip.DDate == line.texts[0] && slip.JunNo == line.texts[1] && slip.UserID == line.texts[2];
    };
    // The lines of one slip come together unless they were saved at different times.
    auto slip = std::find_if(slips_.rbegin(), slips_.rend(), isOfSlip);
    if (slip == slips_.rend()) {
        slips_.append(PastSlip{line.texts[0], line.texts[1], line.texts[2], {}, {}});
        slip = slips_.rbegin();
    }
    slip->sums += line.amounts();
    const Quantities bought{line.number(5), line.number(6)};
    if (bought.boxes < 0 || bought.bottles < 0 || bought.isNothing()) return;
    const auto same = std::ranges::find(slip->products, line.texts[3], &Purchase::PCode);
    if (same == slip->products.end()) {
        slip->products.append({line.texts[3], line.texts[4], bought});
        return;
    }
    same->quantities = same->quantities + bought;
}

void PurchaseHistory::addMissing(const PurchaseHistory& other) {
    for (const PastSlip& slip : other.slips_) {
        const bool isKnown = std::ranges::any_of(slips_, [&](const PastSlip& each) {
            return each.DDate == slip.DDate && each.JunNo == slip.JunNo && each.UserID == slip.UserID;
        });
        if (!isKnown) slips_ << slip;
    }
}

PurchaseHistory PurchaseHistory::of(QStringView gCode, QStringView day, QStringView junNo,
                                    QStringView userId) {
    static constexpr db::Statement<
        u"SELECT DDate, JunNo, UserID, PCode, PName, Box, Bon, MMoney, BMoney, YMoney, GMoney FROM MTM "
        u"WHERE GCode = '%s' AND DDate <= '%s' ORDER BY DDate DESC, DTime DESC, JunNo DESC, UserID, PCode "
        u"DESC">
        kBought;
    PurchaseHistory history;
    // Nobody's slips: a customer without a code has none of his own.
    if (gCode.isEmpty()) return history;
    db::forEachRow(kBought(gCode, day), [&](db::CVORecordset& row) {
        Line line;
        for (int column = 0; column < kColumns; ++column) line.texts << row.GetFieldString(column);
        history.add(line);
    });
    const auto leave = [&] {
        history.slips_.removeIf([&](const PastSlip& slip) {
            const bool isOwn = slip.DDate == day && slip.JunNo == junNo && slip.UserID == userId;
            return isOwn || slip.products.isEmpty();
        });
    };
    leave();
    if (history.slips_.size() >= kOffered) return history;
    QMap<QString, PurchaseHistory> archives;
    db::forEachArchivedRow(kArchived.toString(), {gCode.toString(), day.toString()},
                           [&](const QString& file, const QStringList& row) { archives[file].add({row}); });
    for (const PurchaseHistory& archive : std::as_const(archives)) history.addMissing(archive);
    std::ranges::stable_sort(history.slips_, std::ranges::greater(), &PastSlip::DDate);
    leave();
    return history;
}

QList<PurchaseHistory::LastPurchase> PurchaseHistory::products() const {
    QList<LastPurchase> last;
    QSet<QString> seen;
    for (const PastSlip& slip : slips_) {
        for (const Purchase& purchase : slip.products) {
            if (seen.contains(purchase.PCode)) continue;
            seen.insert(purchase.PCode);
            last.append({slip.DDate, purchase});
        }
    }
    return last;
}

std::optional<PurchaseHistory::Usual> PurchaseHistory::usual(QStringView pCode,
                                                             std::int64_t bottlesPerBox) const {
    std::optional<Usual> most;
    int slips = 0;
    for (const PastSlip& slip : slips_) {
        const auto bought = std::ranges::find(slip.products, pCode, &Purchase::PCode);
        if (bought == slip.products.end()) continue;
        const std::int64_t bottles = inBottles(bought->quantities, bottlesPerBox);
        if (!most || bottles > most->bottles) most = {bought->quantities, bottles};
        if (++slips == kOffered) break;
    }
    return most;
}

std::optional<PurchaseHistory::Usual> PurchaseHistory::unusual(QStringView pCode, std::int64_t bottlesPerBox,
                                                               const Quantities& quantities) const {
    constexpr int kTimes = 10;
    const std::optional<Usual> most = usual(pCode, bottlesPerBox);
    const std::int64_t bottles = std::abs(inBottles(quantities, bottlesPerBox));
    return most && platform::Won(bottles) >= kTimes * platform::Won(most->bottles) ? most : std::nullopt;
}

}  // namespace sales
