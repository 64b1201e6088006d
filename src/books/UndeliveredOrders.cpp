#include "books/UndeliveredOrders.h"

#include "db/Query.h"
#include "db/Statement.h"

namespace books {
namespace {

// The import knows no time of saving. An empty user leaves the condition on him out.
constexpr db::Statement<
    u"SELECT DDate, JunNo, UserID FROM MTM WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s') "
    u"AND NOT EXISTS (SELECT 1 FROM MTMOK WHERE MTMOK.DDate = MTM.DDate AND MTMOK.JunNo = MTM.JunNo "
    u"AND MTMOK.UserID = MTM.UserID) GROUP BY DDate, JunNo, UserID "
    u"HAVING TOTAL(DTime <> '') = 0 AND TOTAL(WorkGubun = '발행' OR WorkGubun = '결제') = 0">
    kOfDay;
constexpr db::Statement<
    u"SELECT DDate, JunNo, UserID FROM MTM WHERE GCode = '%s' AND DDate <= '%s' "
    u"AND NOT EXISTS (SELECT 1 FROM MTMOK WHERE MTMOK.DDate = MTM.DDate AND MTMOK.JunNo = MTM.JunNo "
    u"AND MTMOK.UserID = MTM.UserID) GROUP BY DDate, JunNo, UserID "
    u"HAVING TOTAL(DTime <> '') = 0 AND TOTAL(WorkGubun = '발행' OR WorkGubun = '결제') = 0">
    kOfCustomer;

std::optional<QSet<QStringList>> read(const db::Sql& select) {
    QSet<QStringList> slips;
    const int rows = db::forEachRow(select, [&](db::CVORecordset& row) {
        slips << QStringList{row.GetFieldString(0), row.GetFieldString(1), row.GetFieldString(2)};
    });
    return rows < 0 ? std::nullopt : std::optional(slips);
}

}  // namespace

std::optional<UndeliveredOrders> UndeliveredOrders::ofDay(QStringView date, QStringView userId) {
    const auto slips = read(kOfDay(date, userId, userId));
    if (!slips) return std::nullopt;
    UndeliveredOrders orders;
    orders.slips_ = *slips;
    return orders;
}

UndeliveredOrders UndeliveredOrders::ofCustomer(QStringView gCode, QStringView date) {
    UndeliveredOrders orders;
    orders.slips_ = read(kOfCustomer(gCode, date)).value_or(QSet<QStringList>());
    return orders;
}

bool UndeliveredOrders::contains(const QString& date, const QString& junNo, const QString& userId) const {
    return slips_.contains({date, junNo, userId});
}

}  // namespace books
