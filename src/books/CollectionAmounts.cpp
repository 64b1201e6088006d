// What the amounts of a collection slip mean, and how they change.
#include <algorithm>

#include "books/CollectionSlip.h"

namespace books {

using platform::Won;

void CollectionSlip::setAmounts(const SettlementAmounts& amounts, Won crateDeposit) {
    MMoney = amounts.sales;
    PMoney = amounts.supply;
    BMoney = amounts.vat;
    YMoney = crateDeposit;
    GMoney = amounts.deposit - crateDeposit;
    YGMoney = amounts.deposit;
    InMoney = amounts.cash + amounts.card;
    WonMoney = amounts.cash;
    CardMoney = amounts.card;
    MisuInMoney = amounts.earlierReceivable;
    UnderMoney = amounts.unpaid;
    YDMoney = amounts.containerRecovery;
    GDMoney = amounts.nonLiquor;
}

SettlementAmounts CollectionSlip::amounts() const {
    return {.sales = MMoney,
            .supply = PMoney,
            .vat = BMoney,
            .nonLiquor = GDMoney,
            .deposit = YGMoney,
            .total = isSimplePayment() ? MMoney + GDMoney - YDMoney : MMoney + YGMoney,
            .containerRecovery = YDMoney,
            .card = CardMoney,
            .cash = WonMoney,
            .unpaid = UnderMoney,
            .earlierReceivable = MisuInMoney,
            .previousReceivable = {}};
}

SaleAmounts CollectionSlip::sale() const {
    return {PMoney, MMoney - PMoney, YMoney, GMoney};
}

Won CollectionSlip::receivableEffect() const {
    // What came in is the sum that the row has, whatever its parts are.
    return isSimplePayment() ? Won() : books::receivableEffect(amounts()) + WonMoney + CardMoney - InMoney;
}

Won CollectionSlip::cashTaken() const {
    return isExcessBooked() ? Won() : WonMoney + MisuInMoney;
}

bool CollectionSlip::isExcessBooked() const {
    return !isSimplePayment() && excessBooking(amounts(), MMoney + YGMoney) != ExcessBooking::None;
}

bool CollectionSlip::hasAmounts() const {
    return std::ranges::any_of(
        std::array{MMoney, YGMoney, WonMoney, CardMoney, MisuInMoney, UnderMoney, YDMoney, GDMoney},
        [](Won amount) { return !amount.isZero(); });
}

void CollectionSlip::takeRecoveryBack() {
    if (isExcessBooked()) {
        // By button the cash is 0 already.
        WonMoney = MisuInMoney = Won();
        InMoney = CardMoney;
    }
    YDMoney = Won();
    const Won total = MMoney + YGMoney;
    UnderMoney = total < Won(1) ? Won() : total - InMoney;
}

void CollectionSlip::moveSale(const SaleAmounts& difference) {
    const ExcessBooking booking = excessBooking(amounts(), MMoney + YGMoney);
    const bool hadNoTotal = MMoney + YGMoney < Won(1);
    MMoney += difference.sales();
    PMoney += difference.supply;
    BMoney += difference.vat;
    YMoney += difference.crateDeposit;
    GMoney += difference.bottleDeposit;
    YGMoney += difference.deposit();
    follow(booking, difference.total());
    // Without a total nothing was unpaid, whatever was due.
    const Won total = MMoney + YGMoney;
    if (booking == ExcessBooking::None && hadNoTotal && total >= Won(1))
        UnderMoney = total - YDMoney - CardMoney - WonMoney;
}

void CollectionSlip::moveRecovery(Won difference) {
    const ExcessBooking booking = excessBooking(amounts(), MMoney + YGMoney);
    YDMoney += difference;
    // Without a sale it only comes off the receivable.
    follow(booking, MMoney + YGMoney < Won(1) ? Won() : -difference);
}

void CollectionSlip::follow(ExcessBooking booked, Won difference) {
    if (booked == ExcessBooking::None) {
        UnderMoney += difference;
        return;
    }
    const Won due = MMoney + YGMoney - YDMoney;
    const Won excess = due < Won() ? -due : Won();
    MisuInMoney = excess;
    WonMoney = booked == ExcessBooking::InCash ? -excess : Won();
    InMoney = WonMoney + CardMoney;
    UnderMoney = due + excess - CardMoney;
}

}  // namespace books
