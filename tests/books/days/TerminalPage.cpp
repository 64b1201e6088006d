// Reads the tables past the code under test.
#include <gtest/gtest.h>

#include <algorithm>

#include "Terminal.h"

namespace days {

template <typename Row, typename Read>
std::vector<Row> Terminal::rows(const char* select, Read&& read) {
    std::vector<Row> found;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(reader_, select, -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(reader_);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        int column = 0;
        const auto next = [&] {
            const auto* value = reinterpret_cast<const char*>(sqlite3_column_text(statement, column++));
            return std::string(value != nullptr ? value : "");
        };
        found.push_back(read(next));
    }
    sqlite3_finalize(statement);
    std::ranges::sort(found);
    return found;
}

namespace {

Won won(const std::string& text) {
    return text.empty() ? 0 : std::stoll(text);
}

template <typename Next>
Visit readVisit(Next& next) {
    Visit visit;
    visit.key.date = next();
    visit.key.number = next();
    visit.key.user = next();
    visit.customer = next();
    return visit;
}

template <typename Next>
Goods readGoods(Next& next) {
    Goods line;
    line.visit = readVisit(next);
    line.product = next();
    line.boxes = int(won(next()));
    line.bottles = int(won(next()));
    for (Won* amount : {&line.supply, &line.vat, &line.crates, &line.deposit}) *amount = won(next());
    return line;
}

template <typename Next>
Empties readEmpties(Next& next) {
    Empties line;
    line.visit = readVisit(next);
    line.product = next();
    for (int* count : {&line.full, &line.mixed, &line.bottles}) *count = int(won(next()));
    for (Won* amount : {&line.crates, &line.deposit}) *amount = won(next());
    return line;
}

}  // namespace

Page Terminal::page() {
    Page page;
    page.goods =
        rows<Goods>("SELECT DDate,JunNo,UserID,GCode,PCode,Box,Bon,MMoney,BMoney,YMoney,GMoney FROM MTM",
                    [](auto& next) { return readGoods(next); });
    page.empties = rows<Empties>("SELECT DDate,JunNo,UserID,GCode,PCode,FBox,NBox,Bon,YMONEY,GMONEY FROM YTM",
                                 [](auto& next) { return readEmpties(next); });
    page.collections = rows<Collection>(
        "SELECT DDate,JunNo,UserID,GCode,MMoney,PMoney,BMoney,GDMoney,YGMoney,YDMoney,CardMoney,WonMoney,"
        "UnderMoney,MisuInMoney,BANKTRANNO,Gubun FROM MTMOK",
        [](auto& next) {
            Collection row;
            row.visit = readVisit(next);
            Amounts& a = row.amounts;
            for (Won* amount : {&a.sales, &a.supply, &a.vat, &a.other, &a.deposits, &a.recovery, &a.card,
                                &a.cash, &a.unpaid, &a.earlier})
                *amount = won(next());
            row.approval = next();
            row.isSimple = next() == "단순결제";
            return row;
        });
    page.payments = rows<Payment>(
        "SELECT Number,DDate,JunNo,UserID,GCode,State,Charged,BANKTRANNO FROM PAYJOURNAL "
        "WHERE State <> 'prepared'",
        [](auto& next) {
            Payment payment;
            payment.message = next();
            payment.visit = readVisit(next);
            payment.state = next();
            payment.amount = won(next());
            payment.approval = next();
            return payment;
        });
    for (const auto& [customer, debt] :
         rows<std::pair<std::string, Won>>("SELECT GCODE,CJMONEY FROM GARAE", [](auto& next) {
             std::pair<std::string, Won> balance;
             balance.first = next();
             balance.second = won(next());
             return balance;
         }))
        page.debt[customer] = debt;
    return page;
}

std::vector<Goods> Terminal::draft() {
    auto lines =
        rows<Goods>("SELECT DDate,JunNo,'',GCode,PCode,Box,Bon,MMoney,BMoney,YMoney,GMoney FROM TEMP",
                    [](auto& next) { return readGoods(next); });
    for (Goods& line : lines) line.visit.key.user = text(user_);
    return lines;
}

std::vector<Empties> Terminal::returns() {
    auto lines = rows<Empties>("SELECT DDate,JunNo,'',GCode,PCode,FBox,NBox,Bon,YMONEY,GMONEY FROM YTEMP",
                               [](auto& next) { return readEmpties(next); });
    for (Empties& line : lines) line.visit.key.user = text(user_);
    return lines;
}

}  // namespace days
