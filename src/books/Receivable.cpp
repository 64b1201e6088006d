#include "books/Receivable.h"

#include "db/Query.h"

namespace books {

using platform::Won;

namespace {

constexpr db::Statement<u"SELECT CJMoney FROM GARAE WHERE GCode= '%s'"> kReceivable;

}  // namespace

ExcessBooking excessBooking(const SettlementAmounts& amounts, Won total) {
    const Won excess = amounts.containerRecovery - total;
    if (excess <= Won() || amounts.earlierReceivable != excess) return ExcessBooking::None;
    if (amounts.cash == -excess) return ExcessBooking::InCash;
    const bool isByButton = amounts.cash.isZero() && amounts.card.isZero() && amounts.unpaid.isZero();
    return isByButton ? ExcessBooking::ByButton : ExcessBooking::None;
}

Won receivableEffect(const SettlementAmounts& amounts) {
    const Won due = amounts.total - amounts.containerRecovery;
    if (excessBooking(amounts, amounts.total) == ExcessBooking::ByButton) return due;
    return due - amounts.card - amounts.cash - amounts.earlierReceivable;
}

Won receivable(QStringView gCode) {
    const auto customer = db::firstRow(kReceivable(gCode));
    return customer ? platform::parseWon(customer->value(0)) : Won();
}

bool moveReceivable(db::Transaction& transaction, QStringView gCode, Won by) {
    static constexpr db::Statement<u"UPDATE GARAE SET CJMoney = '%s' WHERE GCode = '%s'"> kMoveReceivable;
    if (by.isZero() || !db::hasRow(kReceivable(gCode))) return true;
    const Won moved = receivable(gCode) + by;
    return transaction.run(kMoveReceivable(platform::formatWon(moved), gCode)) && receivable(gCode) == moved;
}

}  // namespace books
