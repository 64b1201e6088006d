#include "collect/SimplePayment.h"

#include "books/VatSplit.h"

namespace collect {

using books::SettlementAmounts;
using platform::Won;

namespace {

Won& amount(SettlementAmounts& amounts, SimpleAmount which) {
    switch (which) {
        case SimpleAmount::Sales: return amounts.sales;
        case SimpleAmount::Supply: return amounts.supply;
        case SimpleAmount::Vat: return amounts.vat;
        case SimpleAmount::NonLiquor: return amounts.nonLiquor;
        case SimpleAmount::Recovery: break;
    }
    return amounts.containerRecovery;
}

}  // namespace

Won value(const SettlementAmounts& amounts, SimpleAmount which) {
    SettlementAmounts copy = amounts;
    return amount(copy, which);
}

Won keySimpleAmount(SettlementAmounts& amounts, SimpleAmount which, Won keyed) {
    amount(amounts, which) = keyed;
    if (which == SimpleAmount::Sales) {
        const books::VatSplit split = books::splitVat(keyed);
        amounts.supply = split.supply;
        amounts.vat = split.vat;
    } else if (which == SimpleAmount::Supply || which == SimpleAmount::Vat) {
        amounts.sales = amounts.supply + amounts.vat;
    }
    const Won gross = amounts.sales + amounts.nonLiquor;
    amounts.total = gross;
    if (gross >= amounts.containerRecovery) {
        amounts.total = gross - amounts.containerRecovery;
        return Won();
    }
    const Won excess = amounts.containerRecovery - gross;
    amounts.containerRecovery = Won();
    return excess;
}

}  // namespace collect
