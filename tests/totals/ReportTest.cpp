#include "totals/Report.h"

#include <gtest/gtest.h>

#include "support/PrintQt.h"
#include "support/TestDevice.h"
#include "totals/DailyReports.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

TEST(DailyReports, AreOfOneUserOrEverybodyAndNeverShort) {
    test::TestDevice device;
    device.execute(
        uR"(
        INSERT INTO GARAE (GCODE, USERID, CJMONEY) VALUES ('A', 'A', '5'), ('B', 'B', '5');
        INSERT INTO MTM (DDate, UserID, PCode, MMoney, WorkGubun) SELECT '2024-03-29', USERID, '1', '5', '발행' FROM
            GARAE;
        INSERT INTO YTM (DDate, UserID, PCode, FBox) SELECT '2024-03-29', USERID, '1', '5' FROM GARAE;
        INSERT INTO MTMOK (DDate, UserID, GCode, CardMoney, BANKTRANNO) SELECT '2024-03-29', USERID, '1', '5', '9' FROM
            GARAE)"_s);
    const auto sumOf = [](const DailyReport& daily, QStringView user) {
        Won sum;
        for (const Sum& each : sums(daily.make(u"2024-03-29", user).value_or(Report()))) sum += each.value;
        return sum.value();
    };
    for (const DailyReport& daily : dailyReports()) {
        SCOPED_TRACE(daily.name.toUtf8().toStdString());
        EXPECT_EQ(sumOf(daily, u"A"), 5);
        EXPECT_EQ(sumOf(daily, u""), 10);
        EXPECT_EQ(sumOf(daily, u"C"), 0);
    }
    device.execute(u"DROP TABLE MTM; DROP TABLE YTM; DROP TABLE MTMOK; DROP TABLE GARAE"_s);
    for (const DailyReport& daily : dailyReports()) EXPECT_FALSE(daily.make(u"2024-03-29", u"A"));
}

}  // namespace
}  // namespace totals
