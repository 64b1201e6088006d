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
constexpr db::Statement<
    u"SELECT GCode FROM MTM WHERE DDate = '%s' AND (DTime <> '' OR WorkGubun = '발행' OR WorkGubun = '결제') "
    u"UNION SELECT GCode FROM MTMOK WHERE DDate = '%s' UNION SELECT GCode FROM YTM WHERE DDate = '%s'">
    kVisited;
constexpr db::Statement<u"SELECT DISTINCT GCode FROM MTM WHERE DDate = '%s'"> kOrdered;

QSet<QString> codes(const db::Sql& select) {
    QSet<QString> found;
    db::forEachRow(select, [&](db::CVORecordset& row) { found << row.GetFieldString(0); });
    return found;
}

}  // namespace

platform::RowSource customers(QStringView seek, QStringView userId, bool ownOnly) {
    return db::selectPieces(ownOnly ? kOwnCustomers(seek, userId) : kAllCustomers(seek), 3);
}

DaysCustomers customersOfDay(QStringView workDate) {
    return {codes(kVisited(workDate, workDate, workDate)), codes(kOrdered(workDate))};
}

}  // namespace sales
