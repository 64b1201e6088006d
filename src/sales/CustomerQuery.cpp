#include "sales/CustomerQuery.h"

#include "db/Query.h"
#include "db/Statement.h"

namespace sales {
namespace {

constexpr db::Statement<
    u"SELECT GCode, GName, EndDate FROM GARAE WHERE  Seek = '%s' AND userID = '%s' "
    u"ORDER BY GName DESC">
    kOwnCustomers;
constexpr db::Statement<
    u"SELECT GCode, GName, EndDate FROM GARAE WHERE  Seek = '%s'                   "
    u"ORDER BY GName DESC">
    kAllCustomers;

}  // namespace

platform::RowSource customers(QStringView seek, QStringView userId, bool ownOnly) {
    return db::selectPieces(ownOnly ? kOwnCustomers(seek, userId) : kAllCustomers(seek), 3);
}

}  // namespace sales
