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
constexpr db::Statement<u"SELECT tel, Majin, CJMoney FROM GARAE WHERE GCode = '%s' "> kFooter;
constexpr db::Statement<u"SELECT TTmoney,CJMoney,Gubun FROM GARAE WHERE GCode= '%s'"> kAccount;

}  // namespace

platform::Rows customers(QStringView seek, QStringView userId, bool ownOnly) {
    return db::selectRows(ownOnly ? kOwnCustomers(seek, userId) : kAllCustomers(seek), 3);
}

std::optional<CustomerFooter> customerFooter(QStringView gcode) {
    const auto row = db::firstRow(kFooter(gcode));
    if (!row) return std::nullopt;
    return CustomerFooter{row->at(0), row->at(1), platform::parseWon(row->at(2))};
}

CustomerAccount customerAccount(QStringView gcode) {
    const auto row = db::firstRow(kAccount(gcode));
    if (!row) return {};
    return {row->at(2), platform::parseWon(row->at(1))};
}

}  // namespace sales
