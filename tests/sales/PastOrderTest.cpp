#include "sales/PastOrder.h"

#include <gtest/gtest.h>

#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QStringView kToday = u"2026-11-21";
constexpr QStringView kLine =
    u"INSERT INTO MTM (DDate, JunNo, UserID, DTime, GCode, PCode, PName, Box, Bon, MMoney, BMoney, YMoney, "
    u"GMoney) ";

class PastOrderTest : public testing::Test {
  protected:
    PastOrderTest() {
        device.execute(
            uR"(INSERT INTO PUMMOK (Pcode, Pname, Gubun, Size, BoxBonEa, JGubun, TTT, BBoxMMoney, BBonMMoney, BBoxBMoney)
                VALUES ('1001', '소주', '공용', '360ml', '20', '01', NULL, '30000', '1500', '3000'),
                ('1002', '맥주', '공용', '', '', '02', 'Z', '20000', '1000', '2000'),
                ('1003', '막걸리', '공용', '', '', '03', 'Y', '1', '1', '1'),
                ('1004', '와인', '일반', '', '', '04', '', '1', '1', '1'),
                ('1005', '오''가피', '공용', '', '', '04', '', '1', '1', '1'))"_s);
    }

    /// A line of that day, slip and product for ten won; `more` are the texts of user and time.
    void add(const QString& day, const QString& junNo, const QString& product, int boxes, int bottles,
             const QString& more = u"'A', '09:00'"_s) {
        device.execute(kLine.toString() +
                       u"VALUES ('%1', '%2', %3, '0001', '%4', (SELECT Pname FROM PUMMOK WHERE "
                       "Pcode = '%4'), '%5', '%6', '7', '1', '1', '1')"_s.arg(day, junNo, more, product)
                           .arg(boxes)
                           .arg(bottles));
    }

    PurchaseHistory history() { return PurchaseHistory::of(u"0001", kToday, u"5009", u"A"); }

    /// The slips as "day number total: product quantity ...".
    QStringList slips() {
        QStringList told;
        const PurchaseHistory bought = history();
        for (const PastSlip& slip : bought.slips()) {
            told << u"%1 %2 %3:"_s.arg(slip.DDate.mid(5), slip.JunNo, platform::formatWon(slip.sums.total()));
            for (const Purchase& each : slip.products)
                told.last() += u" %1 %2"_s.arg(each.PCode, shortQuantityText(each.quantities));
        }
        return told;
    }

    test::TestDevice device;
};

TEST_F(PastOrderTest, KnowsTheCustomersSlipsTheNewestFirst) {
    add(u"2026-11-20"_s, u"5001"_s, u"1001"_s, 3, 0);
    add(u"2026-11-20"_s, u"5001"_s, u"1001"_s, 1, 5);
    add(u"2026-11-20"_s, u"5001"_s, u"1002"_s, -1, 0);
    add(u"2026-11-20"_s, u"5002"_s, u"1002"_s, 2, 0, u"'B', '14:00'"_s);
    add(u"2026-11-19"_s, u"0003"_s, u"1002"_s, 4, 0, u"'A', NULL"_s);  // An order of the office.
    add(u"2026-11-19"_s, u"5005"_s, u"1002"_s, -4, 0);
    add(kToday.toString(), u"5009"_s, u"1001"_s, 9, 0);
    add(u"2026-11-22"_s, u"5001"_s, u"1001"_s, 8, 0);
    EXPECT_EQ(slips(), (QStringList{u"11-20 5002 10: 1002 2/0"_s, u"11-20 5001 30: 1001 4/5"_s,
                                    u"11-19 0003 10: 1002 4/0"_s}));
    QStringList last;
    for (const auto& each : history().products())
        last << each.DDate.mid(5) + u' ' + each.purchase.PCode + u' ' +
                    quantityText(each.purchase.quantities);
    EXPECT_EQ(last, (QStringList{u"11-20 1002 2상자"_s, u"11-20 1001 4상자 5본"_s}));
}

TEST_F(PastOrderTest, LooksIntoTheArchivesAtHandWhileItsSlipsAreFew) {
    add(u"2026-09-01"_s, u"5001"_s, u"1001"_s, 1, 0);
    add(u"2026-09-02"_s, u"5001"_s, u"1002"_s, 2, 0);
    // A slip that lies in two files is one; of one that the terminal has as well, the terminal knows better.
    add(u"2026-11-01"_s, u"5001"_s, u"1001"_s, 9, 9);
    device.execute(
        u"VACUUM INTO '%1/저장소카드/2026-q3.cdb'; VACUUM INTO '%1/저장소카드/backup.cdb'; "
        "DELETE FROM MTM"_s.arg(device.folder()));
    device.writeFile(u"\\My Documents\\broken.cdb", "no database");
    for (int day = 1; day <= 4; ++day) add(u"2026-11-0%1"_s.arg(day), u"5001"_s, u"1001"_s, day, 0);
    EXPECT_EQ(slips().mid(3), (QStringList{u"11-01 5001 10: 1001 1/0"_s, u"09-02 5001 10: 1002 2/0"_s,
                                           u"09-01 5001 10: 1001 1/0"_s}));
    add(u"2026-11-05"_s, u"5001"_s, u"1001"_s, 5, 0);
    EXPECT_EQ(slips().size(), 5) << "the archive is left alone";
}

}  // namespace
}  // namespace sales
