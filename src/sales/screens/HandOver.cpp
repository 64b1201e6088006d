#include "sales/screens/HandOver.h"

#include "app/Session.h"
#include "sales/Checkout.h"

namespace sales {

void handOver(const SlipSums& lines, platform::Won receivable) {
    app::SessionValues& session = app::session();
    const SlipSums sums = slipSums(lines, session.UserField3);
    app::ActionValues& action = session.action;
    action.SupplySum = sums.supply;
    action.VatSum = sums.vat;
    action.CrateDepositSum = sums.crateDeposit;
    action.BottleDepositSum = sums.bottleDeposit;
    action.CheckoutSales = sums.subtotal();
    action.CheckoutSupply = sums.supply;
    action.CheckoutVat = sums.vat;
    action.CheckoutDeposits = sums.deposits();
    action.CheckoutTotal = sums.total();
    action.CheckoutReceivable = receivable;
}

}  // namespace sales
