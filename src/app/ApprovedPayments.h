#pragma once

namespace app {

/// True when the chosen slip's number may be deleted on the work date along with every collection under it:
/// no approved payment goes with it, or the user has agreed to that. A payment of another salesman or
/// customer is told first. `isPaid` asks also where no collection carries an approval.
bool mayDeletePayments(bool isPaid = false);

}  // namespace app
