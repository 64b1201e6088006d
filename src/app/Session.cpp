#include "app/Session.h"

#include "db/Query.h"

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
    db::CVOConnection connection;
    db::openDatabase(connection);
    connection.Execute(kEmptyWorkingSlip());
    connection.Execute(kEmptyWorkingContainerSlip());
}

}  // namespace app
