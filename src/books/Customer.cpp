#include "books/Customer.h"

#include "db/Query.h"
#include "db/Statement.h"

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Reads the customer into `columns`, of which null ones are passed over.
std::optional<Customer> read(const db::Sql& select, std::initializer_list<QString Customer::*> columns) {
    const auto row = db::firstRow(select);
    if (!row) return std::nullopt;
    Customer customer;
    qsizetype place = 0;
    for (const auto column : columns) {
        if (column != nullptr) customer.*column = row->value(place);
        ++place;
    }
    return customer;
}

}  // namespace

std::optional<Customer> listedCustomer(QStringView gCode) {
    static constexpr db::Statement<u"SELECT tel, Majin, CJMoney FROM GARAE WHERE GCode = '%s' "> kListed;
    return read(kListed(gCode), {&Customer::Tel, &Customer::Majin, &Customer::CJMoney});
}

std::optional<Customer> slipCustomer(QStringView gCode) {
    static constexpr db::Statement<u"SELECT TTmoney,CJMoney,Gubun FROM GARAE WHERE GCode= '%s'"> kOfSlip;
    return read(kOfSlip(gCode), {nullptr, &Customer::CJMoney, &Customer::Gubun});
}

std::optional<Customer> containerCustomer(QStringView gCode) {
    static constexpr db::Statement<u"SELECT CJMoney,Gubun FROM GARAE WHERE GCode= '%s'"> kOfContainers;
    return read(kOfContainers(gCode), {&Customer::CJMoney, &Customer::Gubun});
}

std::optional<Customer> paperCustomer(QStringView gCode) {
    static constexpr db::Statement<u"SELECT SNO, GUPJU, JUSO, TEL FROM GARAE WHERE GCode= '%s'"> kOfPaper;
    return read(kOfPaper(gCode), {&Customer::Sno, &Customer::Gupju, &Customer::Juso, &Customer::Tel});
}

Customer cardCustomer(QStringView gCode) {
    static constexpr db::Statement<u"SELECT GName,Sno,Gupju, Juso  FROM GARAE WHERE GCODE = '%s'  "> kOfCard;
    const Customer unknown{
        .GName = u"XXXX"_s, .Sno = u"XXX-XX-XXXX"_s, .Gupju = u"XXXX"_s, .Juso = u"XXXX"_s};
    return read(kOfCard(gCode), {&Customer::GName, &Customer::Sno, &Customer::Gupju, &Customer::Juso})
        .value_or(unknown);
}

}  // namespace books
