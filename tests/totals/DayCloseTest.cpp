#include "totals/DayClose.h"

#include <gtest/gtest.h>

#include "books/CollectionSlip.h"
#include "sales/SlipStore.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"
#include "totals/DailyReports.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

constexpr QStringView kDay = u"2026-11-21";

QString cell(const Report& strip, const QString& label) {
    for (const Section& section : strip.sections) {
        for (const Row& row : section.rows) {
            if (row[0].text() == label) return section.title + u' ' + row[1].text();
        }
    }
    return {};
}

class DayClosing : public ::testing::Test {
  protected:
    DayClosing() {
        device.execute(
            uR"(
            INSERT INTO GARAE (GCODE, CJMONEY) VALUES ('0001', '0');
            INSERT INTO MTM (DDate, GCode, GName, JunNo, WorkGubun, PCode, Box, MMoney, BMoney, UserID, DTime) VALUES
                ('2026-11-21', '0001', '이''상회', '5001', '발행', '1', '2', '1000', '100', 'A', '09:00'),
                ('2026-11-21', '0002', '둘', '5002', '미발행', '1', '3', '2000', '200', 'A', '09:00'),
                ('2026-11-21', '0003', '셋', '5003', '미발행', '1', '90', '9000', '900', 'A', NULL);
            INSERT INTO MTMOK (DDate, Gubun, GCode, JunNo, UserID, MMoney, WonMoney, InMoney, CardMoney, BANKTRANNO) VALUES
                ('2026-11-21', '매출', '0001', '5001', 'A', '1100', '1100', '1100', '0', ''),
                ('2026-11-21', '입금', '0001', '7001', 'A', '0', '0', '400', '400', '9'))"_s);
    }

    QList<Row> changes() { return *changesAfterClose(kDay, *closesOfDay(kDay, u"A")); }

    test::TestDevice device;
};

TEST_F(DayClosing, CrossFootsAndKeepsItsStrip) {
    ASSERT_TRUE(closeDay(kDay, u"A", Won(1000)));
    const Report strip = dayCloseReports(kDay, u"A")->first();
    EXPECT_EQ(cell(strip, u"판매·보증금"_s), u"대조 3300"_s);
    EXPECT_EQ(cell(strip, u"수금없는 판매"_s), u"대조 -2200"_s);
    EXPECT_EQ(cell(strip, u"매출없는 입금"_s), u"대조 400"_s);
    EXPECT_EQ(cell(strip, u"수금·외상·회수"_s), u"대조 1500"_s);
    EXPECT_EQ(cell(strip, u"차액"_s), u"대조 0"_s);
    EXPECT_EQ(cell(strip, u"5002 둘"_s), u"수금없는 판매 2200"_s);
    EXPECT_EQ(cell(strip, u"판매 상자"_s), u"판매·회수 5"_s);
    EXPECT_EQ(cell(strip, u"미배송 주문"_s), u"판매·회수 1"_s);
    EXPECT_EQ(cell(strip, u"부족"_s), u"현금 100"_s);
    const QString paper = document(strip).text();
    device.execute(u"UPDATE MTMOK SET WonMoney = '5'; UPDATE PDAUSER SET userNAME = '다른'"_s);
    const auto closes = closesOfDay(kDay, u"A");
    EXPECT_EQ(document(dayCloseReport(kDay, *closes, {})).text(), paper);
    noteStripPrinted(kDay, u"A");
    EXPECT_FALSE(closesOfDay(kDay, u"A")->last().printedAt.isEmpty());
    // What an older terminal kept is shown from its figures, and nothing can be told of changes.
    device.execute(u"UPDATE DAYCLOSE SET Strip = NULL, Visits = NULL"_s);
    EXPECT_EQ(cell(dayCloseReports(kDay, u"A")->first(), u"부족"_s), u"현금 100"_s);
    EXPECT_TRUE(changes().isEmpty());
    device.execute(
        u"DELETE FROM DAYCLOSE; INSERT INTO MTMOK (DDate, Gubun, GCode, JunNo, UserID, MMoney) VALUES "
        "('2026-11-21', '단순결제', '0001', '7002', 'A', '700')"_s);
    ASSERT_TRUE(closeDay(kDay, u"A", Won(1000)));
    EXPECT_EQ(cell(dayCloseReports(kDay, u"A")->first(), u"전표없는 매출"_s), u"대조 700"_s);
}

TEST_F(DayClosing, NamesWhatChangedAfterIt) {
    ASSERT_TRUE(closeDay(kDay, u"A", Won(1100)));
    EXPECT_TRUE(changes().isEmpty());
    // A print is no change, nor is an order that comes in.
    device.execute(
        u"UPDATE MTM SET WorkGubun = '발행', DTime = '19:00' WHERE JunNo = '5002'; INSERT INTO MTM "
        "(DDate, JunNo, UserID, WorkGubun) VALUES ('2026-11-21', '5009', 'A', '미발행')"_s);
    EXPECT_TRUE(changes().isEmpty());
    // The order is delivered, a collection comes, another payment becomes known, a sale goes.
    device.execute(
        u"UPDATE MTM SET DTime = '19:00' WHERE JunNo = '5003'; INSERT INTO PAYJOURNAL (DDate, JunNo, UserID, "
        "GCode, Number, State) VALUES ('2026-11-21', '7001', 'A', '0001', '1', 'approved')"_s);
    books::CollectionSlip slip;
    slip.DDate = kDay.toString();
    slip.JunNo = u"5002"_s;
    slip.UserID = u"A"_s;
    slip.GCode = u"0002"_s;
    slip.UnderMoney = slip.MMoney = Won(2200);
    ASSERT_TRUE(books::saveCollection(slip));
    ASSERT_TRUE(sales::deleteSlip(kDay, u"5001", true, u"A"));
    const QList<Row> found = changes();
    ASSERT_EQ(found.size(), 4);
    EXPECT_EQ(found[3][0].text(), u"5001 이’상회 삭제"_s);
    const Report strip = dayCloseReports(kDay, u"A")->first();
    EXPECT_EQ(strip.sections.first().title, u"마감 후 변경 4건"_s);
    // The next close is of the day as it is then, and counts the deletion once.
    ASSERT_TRUE(closeDay(kDay, u"A", Won(0)));
    EXPECT_TRUE(changes().isEmpty());
    EXPECT_EQ(cell(dayCloseReports(kDay, u"A")->last(), u"삭제 전표"_s), u"판매·회수 1"_s);
    device.execute(u"UPDATE DAYCLOSE SET Strip = NULL"_s);
    EXPECT_EQ(cell(dayCloseReports(kDay, u"A")->last(), u"1차 현금시재"_s), u"현금 1100"_s);
}

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
