#include "books/SlipNumbers.h"

#include <algorithm>
#include <array>

#include "db/Query.h"
#include "db/Statement.h"
#include "platform/Won.h"

namespace books {

using platform::Won;

namespace {

constexpr db::Statement<u"SELECT JunNo FROM MTM WHERE DDate = '%s' AND JunNo < '%s'  ORDER BY JunNo DESC ">
    kSalesNumbers;
constexpr db::Statement<u"SELECT JunNo FROM MTMOK WHERE DDate = '%s' ORDER BY JunNo DESC ">
    kCollectionNumbers;
constexpr db::Statement<u"SELECT JunNo FROM YTM WHERE DDate = '%s' ORDER BY JunNo DESC "> kContainerNumbers;

/// The upper bound of sales numbers: the bytes of "5500" as two 16-bit characters. Every digit sorts below
/// it, so it bounds nothing and the numbers go on past 5499.
constexpr QStringView kSalesBound = u"\u3535\u3030";

constexpr int kCollectionMode = 2;
/// Simple payments are numbered from 7001 on, one above this.
constexpr Won kSimplePaymentThreshold(7000);

struct NumberRange {
    int workMode;
    db::Sql (*numbers)(QStringView workDate);  ///< The day's numbers, highest text first.
    std::int64_t start;
};

constexpr std::array kRanges{
    NumberRange{1, [](QStringView workDate) { return kSalesNumbers(workDate, kSalesBound); }, 5001},
    NumberRange{kCollectionMode, [](QStringView workDate) { return kCollectionNumbers(workDate); }, 7001},
    NumberRange{3, [](QStringView workDate) { return kContainerNumbers(workDate); }, 6001},
};

/// The numbers of what stayed under a number that was given again, below all that are given to new slips.
constexpr std::int64_t kFirstReused = 4001;
constexpr std::int64_t kLastReused = 4999;

/// The first number from `number` on that no unsettled payment of that date has: one that may yet be found
/// approved keeps its number, though no collection slip shows it.
Won skipUnsettledNumbers(QStringView date, Won number) {
    static constexpr db::Statement<
        u"SELECT Number FROM PAYJOURNAL WHERE DDate = '%s' AND JunNo = '%s' AND (State = 'sent' OR State = "
        u"'unknown')">
        kUnsettledNumber;
    while (db::hasRow(kUnsettledNumber(date, platform::formatWon(number)))) number += Won(1);
    return number;
}

}  // namespace

std::optional<QString> nextSlipNumber(int workMode, QStringView workDate) {
    for (const NumberRange& range : kRanges) {
        if (range.workMode != workMode) continue;
        Won next(range.start);
        if (const auto highest = db::firstRow(range.numbers(workDate))) {
            const Won following = platform::parseWon(highest->first()) + Won(1);
            // One below the start still counts: a highest number of "4999" gives "5000".
            if (following >= Won(range.start - 1)) next = following;
        }
        if (workMode == kCollectionMode) next = skipUnsettledNumbers(workDate, next);
        return platform::formatWon(next);
    }
    return std::nullopt;
}

QString nextSimplePaymentNumber(QStringView workDate) {
    const auto highest = db::firstRow(kCollectionNumbers(workDate));
    const Won next = highest ? platform::parseWon(highest->value(0)) + Won(1) : Won();
    return platform::formatWon(skipUnsettledNumbers(
        workDate, next >= kSimplePaymentThreshold ? next : kSimplePaymentThreshold + Won(1)));
}

QString nextNumberOfReused(QStringView workDate) {
    static constexpr db::Statement<
        u"SELECT JunNo FROM MTM WHERE DDate = '%s' UNION SELECT JunNo FROM MTMOK WHERE DDate = '%s' UNION "
        u"SELECT JunNo FROM YTM WHERE DDate = '%s'">
        kNumbers;
    // Apart from those, because a database of an older terminal has no journal.
    static constexpr db::Statement<u"SELECT JunNo FROM PAYJOURNAL WHERE DDate = '%s'"> kPaymentNumbers;
    std::int64_t next = kFirstReused;
    const auto count = [&](db::CVORecordset& row) {
        const std::int64_t number = platform::parseInteger(row.GetFieldString(0));
        if (number >= kFirstReused && number <= kLastReused) next = std::max(next, number + 1);
    };
    db::forEachRow(kNumbers(workDate, workDate, workDate), count);
    db::forEachRow(kPaymentNumbers(workDate), count);
    return QString::number(next);
}

bool customerHasSlip(QStringView workDate, QStringView gcode) {
    static constexpr db::Statement<u"SELECT JunNo FROM MTM WHERE DDate = '%s' AND GCode = '%s'">
        kCustomerSlips;
    return db::hasRow(kCustomerSlips(workDate, gcode));
}

}  // namespace books
