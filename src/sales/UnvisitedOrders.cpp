#include "sales/UnvisitedOrders.h"

#include <algorithm>

#include "books/Customer.h"
#include "books/SaleAmounts.h"
#include "books/UndeliveredOrders.h"
#include "db/Query.h"
#include "db/Statement.h"

namespace sales {

QList<UnvisitedOrder> unvisitedOrders(QStringView userId, QStringView workDate) {
    // The import adds the lines of a file in their order.
    static constexpr db::Statement<
        u"SELECT JunNo, GName, GCode FROM MTM WHERE UserID = '%s' AND DDate = '%s' GROUP BY JunNo "
        u"ORDER BY MIN(rowid)">
        kSlipsAsSent;
    QList<UnvisitedOrder> orders;
    const auto undelivered = books::UndeliveredOrders::ofDay(workDate, userId);
    if (!undelivered || undelivered->count() == 0) return orders;
    const auto sales = books::salesOfDay(workDate, userId);
    const platform::Rows slips = db::selectRows(kSlipsAsSent(userId, workDate), 3);
    for (int row = 0; row < slips.count(); ++row) {
        const QString& junNo = slips.at(row, 0);
        if (!undelivered->contains(workDate.toString(), junNo, userId.toString())) continue;
        const auto customer = books::listedCustomer(slips.at(row, 2)).value_or(books::Customer());
        orders << UnvisitedOrder{junNo, slips.at(row, 1), customer.Tel, sales.value(junNo).total()};
    }
    return orders;
}

SlipList unvisitedFirst(const SlipList& list, const QList<UnvisitedOrder>& orders) {
    const auto placeOf = [&](int row) {
        const auto order = std::ranges::find(orders, list.slips.at(row, 2), &UnvisitedOrder::junNo);
        return order - orders.begin();
    };
    QList<std::pair<qsizetype, int>> places;
    for (int row = 0; row < list.slips.count(); ++row) places.append({placeOf(row), row});
    std::ranges::stable_sort(places, {}, &std::pair<qsizetype, int>::first);
    SlipList sorted = list;
    for (int row = 0; row < int(places.size()); ++row) {
        const int from = places[row].second;
        for (int column = 0; column < list.slips.columns; ++column)
            sorted.slips.cells[row * list.slips.columns + column] = list.slips.at(from, column);
        sorted.amounts[row] = list.amounts[from];
        sorted.states[row] = list.states[from];
    }
    return sorted;
}

}  // namespace sales
