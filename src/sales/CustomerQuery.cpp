#include "sales/CustomerQuery.h"

#include "db/Query.h"
#include "db/Statement.h"

namespace sales {
namespace {

QSet<QString> codes(const db::Sql& select) {
    QSet<QString> found;
    db::forEachRow(select, [&](db::CVORecordset& row) { found << row.GetFieldString(0); });
    return found;
}

}  // namespace

platform::RowSource customers(QStringView seek, QStringView userId, bool ownOnly) {
    static constexpr db::Statement<
        u"SELECT GCode, GName, EndDate FROM GARAE WHERE  Seek = '%s' AND userID = '%s' "
        u"ORDER BY GName DESC">
        kOwnCustomers;
    static constexpr db::Statement<
        u"SELECT GCode, GName, EndDate FROM GARAE WHERE  Seek = '%s'                   "
        u"ORDER BY GName DESC">
        kAllCustomers;
    return db::selectPieces(ownOnly ? kOwnCustomers(seek, userId) : kAllCustomers(seek), 3);
}

DaysCustomers customersOfDay(QStringView workDate) {
    static constexpr db::Statement<
        u"SELECT GCode FROM MTM WHERE DDate = '%s' AND (DTime <> '' OR WorkGubun = '발행' OR WorkGubun = "
        u"'결제') UNION SELECT GCode FROM MTMOK WHERE DDate = '%s' UNION SELECT GCode FROM YTM WHERE DDate = "
        u"'%s'">
        kVisited;
    static constexpr db::Statement<u"SELECT DISTINCT GCode FROM MTM WHERE DDate = '%s'"> kOrdered;
    return {codes(kVisited(workDate, workDate, workDate)), codes(kOrdered(workDate))};
}

}  // namespace sales
