#include "books/UndeliveredOrders.h"

#include "db/Query.h"

namespace books {
namespace {

// What an order is that nobody has delivered. The import knows no time of saving. The slips are those of a
// day, of a customer and of all days before one: a part whose values are empty finds none. An empty user
// leaves the condition on him out.
constexpr db::Statement<
    u"SELECT DDate, JunNo, UserID FROM MTM WHERE rowid IN ("
    u"SELECT rowid FROM MTM WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s') UNION ALL "
    u"SELECT rowid FROM MTM WHERE GCode = '%s' AND DDate <= '%s' UNION ALL "
    u"SELECT rowid FROM MTM WHERE DDate < '%s') "
    u"AND NOT EXISTS (SELECT 1 FROM MTMOK WHERE MTMOK.DDate = MTM.DDate AND MTMOK.JunNo = MTM.JunNo "
    u"AND MTMOK.UserID = MTM.UserID) "
    u"AND NOT EXISTS (SELECT 1 FROM YTM WHERE YTM.DDate = MTM.DDate AND YTM.JunNo = MTM.JunNo "
    u"AND YTM.UserID = MTM.UserID) GROUP BY DDate, JunNo, UserID "
    u"HAVING TOTAL(DTime <> '') = 0 AND TOTAL(WorkGubun = '발행' OR WorkGubun = '결제') = 0">
    kUndelivered;

std::optional<QSet<QStringList>> read(const db::Sql& select) {
    QSet<QStringList> slips;
    const int rows = db::forEachRow(select, [&](db::CVORecordset& row) {
        slips << QStringList{row.GetFieldString(0), row.GetFieldString(1), row.GetFieldString(2)};
    });
    return rows < 0 ? std::nullopt : std::optional(slips);
}

}  // namespace

std::optional<UndeliveredOrders> UndeliveredOrders::ofDay(QStringView date, QStringView userId) {
    const auto slips = read(kUndelivered(date, userId, userId, u"", u"", u""));
    if (!slips) return std::nullopt;
    UndeliveredOrders orders;
    orders.slips_ = *slips;
    return orders;
}

UndeliveredOrders UndeliveredOrders::ofCustomer(QStringView gCode, QStringView date) {
    UndeliveredOrders orders;
    orders.slips_ = read(kUndelivered(u"", u"", u"", gCode, date, u"")).value_or(QSet<QStringList>());
    return orders;
}

db::Sql UndeliveredOrders::selectBefore(QStringView date) {
    return kUndelivered(u"", u"", u"", u"", u"", date);
}

bool UndeliveredOrders::contains(const QString& date, const QString& junNo, const QString& userId) const {
    return slips_.contains({date, junNo, userId});
}

}  // namespace books
