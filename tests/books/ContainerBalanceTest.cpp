#include "books/ContainerBalance.h"

#include <gtest/gtest.h>

#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;

QString shown(const books::ContainerBalance& balance) {
    QString text = balance.PCode;
    for (const books::Containers held :
         {balance.before, balance.delivered, balance.returned, balance.after()})
        text += u" %1/%2"_s.arg(held.crates).arg(held.bottles);
    return text;
}

// 1001 holds 20 bottles a crate, 1002 twelve; the crate of 1003 has no number of bottles; 1004 is no
// container.
TEST(ContainerBalance, IsWhatWentOutLessWhatCameBack) {
    const struct {
        const char* what;
        QString sales;    ///< DDate, GCode, PCode, Box, Bon
        QString returns;  ///< DDate, JunNo, UserID, PCode, FBox, NBox, Bon, all of customer 0001
        QList<books::ContainerReturn> atHand;
        QStringList expected;  ///< Code, then before, delivered, returned and after as crates/bottles.
    } cases[] = {
        {"a customer without rows", u"('2026-11-20','0002','1001','3','0')"_s, u""_s, {}, {}},
        {"no rows, but something taken back",
         u""_s,
         u""_s,
         {{u"1001"_s, u"소주"_s, 1, 2, 3}},
         {u"1001 0/0 0/0 3/43 -3/-43"_s}},
        {"earlier days and this one, products by code downwards",
         u"('2026-11-19','0001','1001','10','5'), ('2026-11-21','0001','1001','2','1'),"
         "('2026-11-21','0001','1002','1','0'), ('2026-11-22','0001','1001','50','0')"_s,
         u"('2026-11-19','5001','A','1001','1','2','3'), ('2026-11-22','5001','A','1001','9','9','9')"_s,
         {{u"1001"_s, u"소주"_s, 0, 4, 0}},
         {u"1002 0/0 1/12 0/0 1/12"_s, u"1001 7/162 2/41 4/80 5/123"_s}},
        {"the saved slip at hand is left out, others of the day and other users' are not",
         u"('2026-11-19','0001','1001','10','0')"_s,
         u"('2026-11-21','6001','A','1001','5','0','0'), ('2026-11-21','6002','A','1001','1','0','0'),"
         "('2026-11-21','6001','B','1001','0','1','0'), ('2026-11-19','6001','A','1001','0','0','7')"_s,
         {{u"1001"_s, u"소주"_s, 2, 0, 0}},
         {u"1001 8/173 0/0 2/0 6/173"_s}},
        {"without bottles in the crate, what is no number, and no container",
         u"('2026-11-21','0001','1003','3','2'), ('2026-11-21','0001','1002','한',''),"
         "('2026-11-21','0001','1004','3','2')"_s,
         u""_s,
         {{u"1003"_s, u"생맥주"_s, 0, 1, 1}},
         {u"1003 0/0 3/2 1/1 2/1"_s}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        test::TestDevice device;
        device.execute(
            u"INSERT INTO PUMMOK (Pcode, BoxBonEa, TTT) VALUES ('1001','20','Z'),"
            "('1002','12','Y'), ('1003','','Z'), ('1004','6','')"_s);
        if (!test.sales.isEmpty())
            device.execute(u"INSERT INTO MTM (DDate,GCode,PCode,Box,Bon) VALUES "_s + test.sales);
        if (!test.returns.isEmpty())
            device.execute(u"INSERT INTO YTM (DDate,JunNo,UserID,PCode,FBox,NBox,Bon) VALUES "_s +
                           test.returns);
        device.execute(u"UPDATE MTM SET DTime = '09:05'; UPDATE YTM SET GCode = '0001'"_s);
        QStringList balances;
        for (const books::ContainerBalance& balance :
             books::containerBalances(u"0001", u"2026-11-21", u"6001", u"A", test.atHand))
            balances << shown(balance);
        EXPECT_EQ(balances, test.expected);
    }
}

}  // namespace
