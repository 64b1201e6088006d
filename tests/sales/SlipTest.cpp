#include <gtest/gtest.h>

#include <QDate>
#include <QDateTime>
#include <QStringList>
#include <QTime>

#include "PrintAmounts.h"
#include "platform/Clock.h"
#include "sales/CustomerQuery.h"
#include "sales/LineAmounts.h"
#include "sales/PastOrder.h"
#include "sales/SlipStore.h"
#include "sales/UnvisitedOrders.h"
#include "sales/WorkingSlip.h"
#include "support/TestDevice.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

namespace {

constexpr QStringView kToday = u"2024-05-07";
constexpr QStringView kUser = u"kim";
constexpr QStringView kNumber = u"5001";

TEST(LineEdit, SplitsWhatIsKeyed) {
    const LineAmounts line = won(1000, 100, 30, 5);
    using Edit = LineAmounts (*)(LineAmounts, Won);
    const struct {
        Edit edit;
        std::int64_t keyed;
        LineAmounts wanted;
    } kCases[] = {
        {withSupply, 900, won(900, 100, 30, 5)},
        {withSubtotal, 5, won(5, 0, 30, 5)},  // 4.55
        {withSubtotal, 6, won(5, 1, 30, 5)},  // 5.45
        {withSubtotal, -10000, won(-9091, -909, 30, 5)},
        {withSubtotal, INT64_MAX, won(8384883669867978006, 838488366986797801, 30, 5)},
        {withTotal, 2235, won(2000, 200, 30, 5)},
        {withTotal, 24, won(-10, -1, 30, 5)},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.keyed);
        EXPECT_EQ(c.edit(line, Won(c.keyed)), c.wanted);
    }
}

class SlipTest : public testing::Test {
  protected:
    SlipTest() { platform::clock::set(QDateTime(QDate(2024, 5, 7), QTime(9, 5))); }
    ~SlipTest() override { platform::clock::set({}); }

    static SlipLine line(const QString& pcode, const QString& box, const QString& bon, LineAmounts amounts) {
        SlipLine line = newLine({kToday.toString(), kNumber.toString(), u"0001"_s, u"가나상회"_s, {}}, pcode,
                                {u"소주 "_s + pcode, u"10"_s}, {box.toInt(), bon.toInt()});
        line.setAmounts(amounts);
        return line;
    }

    void saved(QStringView user, QStringView junNo, QStringView pcode) {
        device.execute(
            u"INSERT INTO MTM (DDate, GName, JunNo, WorkGubun, PCode, Box, Bon, MMoney, BMoney, YMoney, "
            "GMoney, UserID) VALUES ('%1', '손님 %2', '%2', '미발행', '%3', '1', '0', '1000', '100', '20', '3', '%4')"_s
                .arg(kToday, junNo, pcode, user));
    }

    QString savedProducts() {
        QStringList found;
        for (const QStringList& row : device.rows(u"SELECT PCode FROM MTM ORDER BY rowid"_s)) found << row[0];
        return found.join(u' ');
    }

    test::TestDevice device;
};

TEST_F(SlipTest, ChangesNoneOfTwoLinesAlike) {
    for (int i = 0; i < 2; ++i) insertLine(line(u"0001"_s, u"1"_s, u"0"_s, won(1000, 100, 20, 3)));
    const LineKey key{u"0001"_s, u"1"_s, u"0"_s};
    EXPECT_EQ(linesOf(key), 2);
    EXPECT_FALSE(replaceQuantities(key, 2, 0, won(2000, 200, 40, 6)));
    EXPECT_FALSE(replaceAmounts(key, won(2000, 200, 20, 3)));
    EXPECT_EQ(workingSums(), won(2000, 200, 40, 6));
    EXPECT_EQ(linesOf(key), 2);
}

TEST_F(SlipTest, SavesAsUnprintedWithUserAndTime) {
    insertLine(line(u"0001"_s, u"1"_s, u"2"_s, won(1000, 100, 20, 3)));
    EXPECT_EQ(saveSlip(kUser, kToday, kNumber), SaveOutcome::Saved);
    EXPECT_EQ(device.rows(u"SELECT * FROM MTM WHERE PCode = '0001'"_s),
              (QList<QStringList>{{u"2024-05-07"_s, u"매출"_s, u"0001"_s, u"가나상회"_s, u"5001"_s,
                                   u"미발행"_s, u"0001"_s, u"소주 0001"_s, u"10"_s, u"1"_s, u"2"_s, u"1000"_s,
                                   u"100"_s, u"20"_s, u"3"_s, u"kim"_s, u"09:05"_s}}));
}

TEST_F(SlipTest, AQuoteInANameLosesItsStatementOnly) {
    SlipLine quoted = line(u"0001"_s, u"1"_s, u"0"_s, won(1000, 100, 20, 3));
    quoted.GName = u"O'Hara', 'x"_s;
    insertLine(quoted);
    EXPECT_TRUE(isWorkingSlipEmpty());

    // However it came into the working slip, it is not saved, and the slip around it is.
    device.insert(u"TEMP", {{u"PCode", u"0001"}, {u"GName", u"O'Hara"}});
    insertLine(line(u"0002"_s, u"1"_s, u"0"_s, won(1000, 100, 20, 3)));
    EXPECT_EQ(saveSlip(kUser, kToday, kNumber), SaveOutcome::Saved);
    EXPECT_EQ(savedProducts(), u"0002"_s);
}

TEST_F(SlipTest, LeavesAnotherCustomersLinesUnderItsNumberAlone) {
    const auto isTaken = [](QStringView user) { return isOtherCustomers(user, kToday, kNumber, u"0001"); };
    EXPECT_FALSE(isTaken(kUser));
    saved(kUser, kNumber, u"0009");
    device.execute(u"UPDATE MTM SET GCode = '0002'"_s);
    EXPECT_TRUE(isTaken(kUser));
    EXPECT_TRUE(isTaken(u"lee")) << "deleting would take a colleague's along";
    insertLine(line(u"0001"_s, u"1"_s, u"2"_s, won(1000, 100, 20, 3)));
    EXPECT_EQ(saveSlip(kUser, kToday, kNumber), SaveOutcome::Taken);
    EXPECT_EQ(savedProducts(), u"0009"_s);
    EXPECT_EQ(saveSlip(u"lee", kToday, kNumber), SaveOutcome::Saved) << "an order under a colleague's number";
    EXPECT_FALSE(isTaken(u"lee"));
}

TEST_F(SlipTest, TellsHowEachSlipOfTheDayStands) {
    device.execute(
        u"INSERT INTO PDAUSER (userID, vatMode) VALUES ('kim', '3');"
        "INSERT INTO GARAE (GCODE, TEL) VALUES ('0002', '031-1');"
        "INSERT INTO MTM (DDate, UserID, JunNo, GCode, GName, WorkGubun, DTime, MMoney, YMoney) SELECT "
        "'2024-05-07', 'kim', * FROM (VALUES ('0002', '0002', '나나', '미발행', '', '10046', '5'), "
        "('0001', '0001', '가가', '미발행', '', '1000', '0'), ('5001', '1', '', '미발행', '09:00', '1000', "
        "'0'), "
        "('5002', '2', '', '결제', '09:00', '1000', '0'), ('5003', '3', '', '미발행', '09:00', '1000', '0'), "
        "('5003', '3', '', '미발행', '09:00', '1000', '7'), ('5004', '4', '', '발행', '09:00', '0', '0'));"
        "INSERT INTO MTMOK (DDate, UserID, JunNo, GCode, CardMoney, BANKTRANNO) VALUES "
        "('2024-05-07', 'kim', '5001', '1', '1', ''), ('2024-05-07', 'kim', '5002', '2', '1', '42'), "
        "('2024-05-07', 'kim', '5003', '3', '1', ''), ('2024-05-07', 'lee', '5004', '4', '1', '');"
        "INSERT INTO PAYJOURNAL (Number, State, DDate, UserID, JunNo) VALUES "
        "('1', 'unknown', '2024-05-07', 'kim', '5003'), ('2', 'unknown', '2024-05-06', 'kim', '5004')"_s);
    const auto told = [](const SlipList& list) {
        QStringList slips;
        for (int row = 0; row < list.slips.count(); ++row)
            slips << list.slips.at(row, 2) + list.states[row] + platform::formatWon(list.amounts[row]);
        return slips.join(u' ');
    };
    const SlipList list = slipsOfDay(kUser, kToday);
    EXPECT_EQ(told(list),
              u"5002결제1100 5003확인중2207 5001카드미승인1100 0002미방문11105 0001미방문1100 5004발행0"_s);
    const QList<UnvisitedOrder> orders = unvisitedOrders(kUser, kToday);
    ASSERT_EQ(orders.size(), 2);
    EXPECT_EQ(orders[0].gName + orders[0].tel, u"나나031-1"_s) << "as the office sent them";
    EXPECT_EQ(orders[0].amount, Won(11105));
    EXPECT_EQ(told(unvisitedFirst(list, orders)),
              u"0002미방문11105 0001미방문1100 5002결제1100 5003확인중2207 5001카드미승인1100 5004발행0"_s);
    const DaysCustomers today = customersOfDay(kToday);
    EXPECT_TRUE(today.visited.contains(u"1"_s) && today.visited.contains(u"4"_s));
    EXPECT_TRUE(!today.visited.contains(u"0002"_s) && today.ordered.contains(u"0002"_s));
}

}  // namespace
}  // namespace sales
