#include "sales/SlipNumber.h"

#include <array>

#include "app/PaymentJournal.h"
#include "app/Session.h"
#include "db/Query.h"
#include "db/Statement.h"
#include "platform/Won.h"

namespace sales {

using platform::Won;

namespace {

constexpr db::Statement<u"SELECT JunNo FROM MTM WHERE DDate = '%s' AND JunNo < '%s'  ORDER BY JunNo DESC ">
    kSalesNumbers;
constexpr db::Statement<u"SELECT JunNo FROM MTMOK WHERE DDate = '%s' ORDER BY JunNo DESC ">
    kCollectionNumbers;
constexpr db::Statement<u"SELECT JunNo FROM YTM WHERE DDate = '%s' ORDER BY JunNo DESC "> kContainerNumbers;
constexpr db::Statement<u"SELECT JunNo FROM MTM WHERE DDate = '%s' AND GCode = '%s'"> kCustomerSlips;

/// The upper bound of sales numbers: the bytes of "5500" as two 16-bit characters. Every digit sorts below
/// it, so it bounds nothing and the numbers go on past 5499.
constexpr QStringView kSalesBound = u"\u3535\u3030";

struct NumberRange {
    int workMode;
    db::Sql (*numbers)(QStringView workDate);  ///< The day's numbers, highest text first.
    std::int64_t start;
};

constexpr std::array kRanges{
    NumberRange{1, [](QStringView workDate) { return kSalesNumbers(workDate, kSalesBound); }, 5001},
    NumberRange{2, [](QStringView workDate) { return kCollectionNumbers(workDate); }, 7001},
    NumberRange{3, [](QStringView workDate) { return kContainerNumbers(workDate); }, 6001},
};

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
        if (workMode == app::kCollectionWork) next = app::skipUnsettledNumbers(workDate, next);
        return platform::formatWon(next);
    }
    return std::nullopt;
}

bool customerHasSlip(QStringView workDate, QStringView gcode) {
    return db::hasRow(kCustomerSlips(workDate, gcode));
}

}  // namespace sales
