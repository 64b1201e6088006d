#include "app/Session.h"

#include "db/Statement.h"
#include "db/Transaction.h"

namespace app {
namespace {

constexpr db::Statement<u"DELETE TEMP "> kEmptyWorkingSlip;
constexpr db::Statement<u"DELETE YTEMP "> kEmptyWorkingContainerSlip;

}  // namespace

SessionValues& session() {
    static SessionValues values;
    return values;
}

void resetSession() {
    session().action = {};
    db::changeWorkingTable(kEmptyWorkingSlip());
    db::changeWorkingTable(kEmptyWorkingContainerSlip());
}

}  // namespace app
