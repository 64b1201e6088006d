#include "books/ContainerBalance.h"

#include <algorithm>

#include "books/UndeliveredOrders.h"
#include "db/Query.h"
#include "platform/Won.h"

namespace books {
namespace {

using platform::parseInteger;

/// The counts are bounded so that no imported figure, however long, can overflow a sum or a product.
std::int64_t bounded(std::int64_t count) {
    constexpr std::int64_t kBound = 1'000'000'000;
    return std::clamp(count, -kBound, kBound);
}

std::int64_t count(QStringView text) {
    return bounded(parseInteger(text));
}

}  // namespace

Containers& Containers::operator+=(Containers other) {
    crates += other.crates;
    bottles += other.bottles;
    return *this;
}

Containers& Containers::operator-=(Containers other) {
    crates -= other.crates;
    bottles -= other.bottles;
    return *this;
}

Containers ContainerBalance::after() const {
    Containers out = before;
    out += delivered;
    out -= returned;
    return out;
}

ContainerBalance& ContainerFigures::of(const QString& pCode, const QString& pName) {
    ContainerBalance& balance = byCode_[pCode];
    if (balance.PCode.isEmpty()) {
        balance.PCode = pCode;
        balance.PName = pName;
    }
    return balance;
}

std::int64_t ContainerFigures::bottlesPerBox(const QString& pCode) {
    static constexpr db::Statement<u"SELECT BoxBonEa FROM PUMMOK WHERE PCode = '%s' "> kBottlesPerBox;
    const auto known = bottles_.find(pCode);
    if (known != bottles_.end()) return known->second;
    const auto row = db::firstRow(kBottlesPerBox(pCode));
    return bottles_[pCode] = row ? count(row->first()) : 0;
}

Containers ContainerFigures::containers(const ContainerReturn& line) {
    const std::int64_t filled = bounded(line.filledCrates);
    return {bounded(line.emptyCrates) + filled, filled * bottlesPerBox(line.PCode) + bounded(line.bottles)};
}

QList<ContainerBalance> ContainerFigures::list() const {
    QList<ContainerBalance> balances;
    for (const auto& [code, balance] : byCode_) {
        const bool isSettled = balance.before.isZero() && balance.delivered.isZero() &&
                               balance.returned.isZero() && balance.ordered.isZero();
        if (!isSettled) balances << balance;
    }
    return balances;
}

ContainerHistory::ContainerHistory(QStringView gCode, QStringView date, QStringView junNo,
                                   QStringView userId) {
    readDeliveries(gCode, date, junNo, userId);
    readReturns(gCode, date, junNo, userId);
}

void ContainerHistory::readDeliveries(QStringView gCode, QStringView date, QStringView junNo,
                                      QStringView userId) {
    // The two marks of the products that are taken back.
    static constexpr db::Statement<
        u"SELECT MTM.PCode, PUMMOK.PName, BoxBonEa, DDate, Box, Bon, JunNo, UserID FROM MTM, PUMMOK WHERE "
        u"MTM.GCode = '%s' AND DDate <= '%s' AND PUMMOK.PCode = MTM.PCode AND (TTT = 'Y' OR TTT = 'Z')">
        kDeliveries;
    // Of what was archived, by the same rules.
    static constexpr db::Statement<
        u"SELECT CONTAINERCARRY.PCode, PUMMOK.PName, BoxBonEa, Box, Bon FROM CONTAINERCARRY, PUMMOK WHERE "
        u"CONTAINERCARRY.GCode = '%s' AND PUMMOK.PCode = CONTAINERCARRY.PCode AND (TTT = 'Y' OR TTT = 'Z')">
        kCarriedDeliveries;
    const auto sold = [](db::CVORecordset& row, int boxColumn) {
        const std::int64_t boxes = count(row.GetFieldString(boxColumn));
        return Containers{boxes,
                          boxes * count(row.GetFieldString(2)) + count(row.GetFieldString(boxColumn + 1))};
    };
    db::forEachRow(kCarriedDeliveries(gCode), [&](db::CVORecordset& row) {
        saved_.of(row.GetFieldString(0), row.GetFieldString(1)).before += sold(row, 3);
    });
    const UndeliveredOrders orders = UndeliveredOrders::ofCustomer(gCode, date);
    db::forEachRow(kDeliveries(gCode, date), [&](db::CVORecordset& row) {
        ContainerBalance& balance = saved_.of(row.GetFieldString(0), row.GetFieldString(1));
        const QString day = row.GetFieldString(3);
        const QString number = row.GetFieldString(6);
        const QString user = row.GetFieldString(7);
        const bool isSaleAtHand = day == date && number == junNo && user == userId;
        const bool isOrdered = !isSaleAtHand && orders.contains(day, number, user);
        (isOrdered ? balance.ordered : day == date ? balance.delivered : balance.before) += sold(row, 4);
    });
}

void ContainerHistory::readReturns(QStringView gCode, QStringView date, QStringView junNo,
                                   QStringView userId) {
    static constexpr db::Statement<
        u"SELECT PCode, PName, DDate, JunNo, UserID, FBox, NBox, Bon FROM YTM WHERE GCode = '%s' "
        u"AND DDate <= '%s'">
        kReturns;
    static constexpr db::Statement<
        u"SELECT PCode, PName, FBox, NBox, BackBon FROM CONTAINERCARRY WHERE GCode = '%s'">
        kCarriedReturns;
    const auto takeBack = [&](db::CVORecordset& row, int countColumn) {
        const ContainerReturn line{
            row.GetFieldString(0), row.GetFieldString(1), count(row.GetFieldString(countColumn)),
            count(row.GetFieldString(countColumn + 1)), count(row.GetFieldString(countColumn + 2))};
        saved_.of(line.PCode, line.PName).before -= saved_.containers(line);
    };
    db::forEachRow(kCarriedReturns(gCode), [&](db::CVORecordset& row) { takeBack(row, 2); });
    db::forEachRow(kReturns(gCode, date), [&](db::CVORecordset& row) {
        const bool isSlipAtHand = row.GetFieldString(2) == date && row.GetFieldString(3) == junNo &&
                                  row.GetFieldString(4) == userId;
        if (!isSlipAtHand) takeBack(row, 5);
    });
}

QList<ContainerBalance> ContainerHistory::with(std::span<const ContainerReturn> returned) {
    ContainerFigures figures = saved_;
    // The bottles of a crate that are looked up are kept for the next time.
    for (const ContainerReturn& line : returned)
        figures.of(line.PCode, line.PName).returned += saved_.containers(line);
    return figures.list();
}

QList<ContainerBalance> containerBalances(QStringView gCode, QStringView date, QStringView junNo,
                                          QStringView userId, std::span<const ContainerReturn> returned) {
    return ContainerHistory(gCode, date, junNo, userId).with(returned);
}

std::optional<Containers> containersTakenBack(QStringView date, QStringView userId) {
    // An empty user leaves the condition on him out.
    static constexpr db::Statement<
        u"SELECT PCode, FBox, NBox, Bon FROM YTM WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s')">
        kReturnsOfDay;
    ContainerFigures balances;
    Containers back;
    const int rows = db::forEachRow(kReturnsOfDay(date, userId, userId), [&](db::CVORecordset& row) {
        back += balances.containers({row.GetFieldString(0),
                                     {},
                                     count(row.GetFieldString(1)),
                                     count(row.GetFieldString(2)),
                                     count(row.GetFieldString(3))});
    });
    return rows < 0 ? std::nullopt : std::optional(back);
}

std::optional<platform::Won> savedRecovery(QStringView date, QStringView junNo, QStringView userId,
                                           QStringView gCode) {
    static constexpr db::Statement<
        u"SELECT YMONEY, GMONEY FROM YTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode = "
        u"'%s'">
        kDeposits;
    platform::Won recovery;
    const int lines = db::forEachRow(kDeposits(date, junNo, userId, gCode), [&](db::CVORecordset& row) {
        recovery += platform::parseWon(row.GetFieldString(0)) + platform::parseWon(row.GetFieldString(1));
    });
    return lines > 0 ? std::optional(recovery) : std::nullopt;
}

}  // namespace books
