#include "app/ContainerBalance.h"

#include <gtest/gtest.h>

#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;

const QString kDay = u"2026-11-21"_s;
const QString kEarlier = u"2026-11-19"_s;
const QString kTheDayAfter = u"2026-11-22"_s;

struct Sale {
    QString date;
    QString product;
    QString boxes;
    QString bottles;
};
struct Return {
    QString date;
    QString junNo;
    QString user;
    QString product;
    QString emptyCrates;
    QString filledCrates;
    QString bottles;
};
struct Case {
    const char* what;
    QList<Sale> sales;
    QList<Return> returns;
    QList<app::ContainerReturn> atHand;
    /// A line for each product: "code before delivered returned after", each crates/bottles.
    QStringList expected;
};

QString shown(const app::ContainerBalance& balance) {
    QString text = balance.PCode;
    for (const app::Containers held : {balance.before, balance.delivered, balance.returned, balance.after()})
        text += u" %1/%2"_s.arg(held.crates).arg(held.bottles);
    return text;
}

// 1001 holds 20 bottles a crate, 1002 twelve; the crate of 1003 has no number of bottles; 1004 is no
// container.
TEST(ContainerBalance, IsWhatWentOutLessWhatCameBack) {
    const Case cases[] = {
        {"a customer without rows", {}, {}, {}, {}},
        {"no rows, but something taken back",
         {},
         {},
         {{u"1001"_s, u"소주"_s, 1, 2, 3}},
         {u"1001 0/0 0/0 3/43 -3/-43"_s}},
        {"earlier days and this one, products by code downwards",
         {{kEarlier, u"1001"_s, u"10"_s, u"5"_s},
          {kDay, u"1001"_s, u"2"_s, u"1"_s},
          {kDay, u"1002"_s, u"1"_s, u"0"_s},
          {kTheDayAfter, u"1001"_s, u"50"_s, u"0"_s}},
         {{kEarlier, u"5001"_s, u"A"_s, u"1001"_s, u"1"_s, u"2"_s, u"3"_s},
          {kTheDayAfter, u"5001"_s, u"A"_s, u"1001"_s, u"9"_s, u"9"_s, u"9"_s}},
         {{u"1001"_s, u"소주"_s, 0, 4, 0}},
         {u"1002 0/0 1/12 0/0 1/12"_s, u"1001 7/162 2/41 4/80 5/123"_s}},
        {"the saved slip at hand is left out, others of the day and other users' are not",
         {{kEarlier, u"1001"_s, u"10"_s, u"0"_s}},
         {{kDay, u"6001"_s, u"A"_s, u"1001"_s, u"5"_s, u"0"_s, u"0"_s},
          {kDay, u"6002"_s, u"A"_s, u"1001"_s, u"1"_s, u"0"_s, u"0"_s},
          {kDay, u"6001"_s, u"B"_s, u"1001"_s, u"0"_s, u"1"_s, u"0"_s},
          {kEarlier, u"6001"_s, u"A"_s, u"1001"_s, u"0"_s, u"0"_s, u"7"_s}},
         {{u"1001"_s, u"소주"_s, 2, 0, 0}},
         {u"1001 8/173 0/0 2/0 6/173"_s}},
        {"without bottles in the crate, and what is no number",
         {{kDay, u"1003"_s, u"3"_s, u"2"_s}, {kDay, u"1002"_s, u"한"_s, u""_s}},
         {},
         {{u"1003"_s, u"생맥주"_s, 0, 1, 1}},
         {u"1003 0/0 3/2 1/1 2/1"_s}},
        {"products that are no containers", {{kDay, u"1004"_s, u"3"_s, u"2"_s}}, {}, {}, {}},
        {"all given back: it is still shown what was before",
         {{kEarlier, u"1001"_s, u"1"_s, u"0"_s}},
         {},
         {{u"1001"_s, u"소주"_s, 0, 1, 0}},
         {u"1001 1/20 0/0 1/20 0/0"_s}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.what);
        test::TestDevice device;
        const QStringView products[][3] = {
            {u"1001", u"20", u"Z"}, {u"1002", u"12", u"Y"}, {u"1003", u"", u"Z"}, {u"1004", u"6", u""}};
        for (const auto& [code, bottles, mark] : products)
            device.insert(u"PUMMOK", {{u"Pcode", code}, {u"BoxBonEa", bottles}, {u"TTT", mark}});
        for (const QStringView customer : {u"0001", u"0002"}) {
            for (const Sale& sale : test.sales) {
                device.insert(u"MTM", {{u"GCode", customer},
                                       {u"DDate", sale.date},
                                       {u"PCode", sale.product},
                                       {u"Box", sale.boxes},
                                       {u"Bon", sale.bottles}});
            }
        }
        for (const Return& back : test.returns) {
            device.insert(u"YTM", {{u"GCode", u"0001"},
                                   {u"DDate", back.date},
                                   {u"JunNo", back.junNo},
                                   {u"UserID", back.user},
                                   {u"PCode", back.product},
                                   {u"FBox", back.emptyCrates},
                                   {u"NBox", back.filledCrates},
                                   {u"Bon", back.bottles}});
        }
        QStringList balances;
        for (const app::ContainerBalance& balance :
             app::containerBalances(u"0001", kDay, u"6001", u"A", test.atHand))
            balances << shown(balance);
        EXPECT_EQ(balances, test.expected);
    }
}

}  // namespace
