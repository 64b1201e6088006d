#include "app/Session.h"

#include "db/Statement.h"
#include "db/Transaction.h"

namespace app {
SessionValues& session() {
    static SessionValues values;
    return values;
}

void resetSession() {
    static constexpr db::Statement<u"DELETE TEMP "> kEmptyWorkingSlip;
    static constexpr db::Statement<u"DELETE YTEMP "> kEmptyWorkingContainerSlip;
    session().action = {};
    db::changeWorkingTable(kEmptyWorkingSlip());
    db::changeWorkingTable(kEmptyWorkingContainerSlip());
}

}  // namespace app
