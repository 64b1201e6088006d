#pragma once

#include "books/TransactionRecord.h"
#include "platform/Won.h"

/// The amounts of a payment without a sales slip: sales = supply + VAT; total = sales + non-liquor -
/// recovery, as long as that is not negative. Won; the other amounts of the record stay 0.
namespace collect {

/// The amount that a button of the screen keys.
enum class SimpleAmount { Sales, Supply, Vat, NonLiquor, Recovery };

/// The value of that amount, in won.
platform::Won value(const books::SettlementAmounts& amounts, SimpleAmount which);

/// Keys one amount and recomputes the rest; sales gives supply and VAT (books::splitVat). A recovery above
/// sales and non-liquor becomes 0, and what it was above them is returned, else 0.
platform::Won keySimpleAmount(books::SettlementAmounts& amounts, SimpleAmount which, platform::Won keyed);

}  // namespace collect
