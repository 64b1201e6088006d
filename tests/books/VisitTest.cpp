#include "books/Visit.h"

#include <gtest/gtest.h>

#include "books/Deletions.h"
#include "books/VisitChecks.h"
#include "sales/SlipStore.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

constexpr QStringView kDay = u"2026-11-21";

/// A sale of 100,000 with 10,000 VAT and 20,500 of deposits, settled on credit.
Visit agreeing() {
    Visit visit;
    visit.date = kDay.toString();
    visit.junNo = u"5001"_s;
    visit.userId = u"A"_s;
    visit.gCode = u"0016"_s;
    visit.balance = Won(5);
    visit.goods = {{u"1001"_s, {}, 3, 2, Won(100000), Won(10000), Won(10000), Won(10500)}};
    CollectionSlip slip;
    slip.Gubun = kCollectionOfSale.toString();
    slip.MMoney = Won(110000);
    slip.YGMoney = Won(20500);
    slip.UnderMoney = Won(130500);
    visit.collections = {slip};
    return visit;
}

JournalPayment payment(PaymentState state, std::int64_t charged, const QString& number = {}) {
    JournalPayment payment;
    payment.state = state;
    payment.charged = Won(charged);
    payment.slip.BANKTRANNO = number;
    return payment;
}

/// The visit paid by card and approved.
Visit paid() {
    Visit visit = agreeing();
    visit.collections[0].UnderMoney = Won();
    visit.collections[0].CardMoney = visit.collections[0].InMoney = Won(130500);
    visit.collections[0].BANKTRANNO = u"1"_s;
    visit.payments = {payment(PaymentState::Approved, 130500, u"1"_s)};
    return visit;
}

QString describe(const QList<VisitDifference>& differences) {
    QStringList texts;
    for (const VisitDifference& each : differences)
        texts << reasonOf(each.kind).toString() + u' ' + platform::formatWon(each.amount);
    return texts.join(u", "_s);
}

/// Settled in cash instead, with a container recovery and a payment of what was owed before.
void settle(Visit& visit, std::int64_t cash, std::int64_t recovery = 0, std::int64_t earlier = 0) {
    CollectionSlip& slip = visit.collections[0];
    slip.UnderMoney = Won();
    slip.WonMoney = slip.InMoney = Won(cash);
    slip.YDMoney = Won(recovery);
    slip.MisuInMoney = Won(earlier);
}

void bringBack(Visit& visit) {
    visit.containers = {{{u"1001"_s, {}, 0, 1, 0}, Won(8000), Won()}};
}

void answer(Visit& visit, PaymentState state) {
    visit.collections[0].BANKTRANNO.clear();
    visit.payments = {payment(state, 130500)};
}

TEST(VisitChecks, NameWhatDoesNotAgree) {
    const struct {
        const char* what;
        Visit visit;
        void (*change)(Visit& v);
        QString differences;
    } cases[] = {
        {"on credit", agreeing(), [](Visit&) {}, u""_s},
        {"by card", paid(), [](Visit&) {}, u""_s},
        {"a rounded total", agreeing(), [](Visit& v) { v.vatMode = u"2"_s, v.goods[0].vat = Won(9995); },
         u""_s},
        {"an order that nobody delivered", agreeing(),
         [](Visit& v) { v.collections.clear(), v.isUndelivered = true; }, u""_s},
        {"goods and containers alone", agreeing(), [](Visit& v) { v.collections.clear(), bringBack(v); },
         u"수금없는 판매 130500, 입금없는 용공 8000"_s},
        {"the sale is gone", agreeing(), [](Visit& v) { v.goods.clear(); }, u"판매없는 입금 130500"_s},
        {"the sale grew", agreeing(), [](Visit& v) { v.goods[0].supply += Won(500); },
         u"판매합계와 다름 -500"_s},
        {"empties credited", agreeing(), [](Visit& v) { settle(v, 122500, 8000), bringBack(v); }, u""_s},
        {"a keyed recovery", agreeing(), [](Visit& v) { settle(v, 122500, 8000); }, u""_s},
        {"empties not credited", agreeing(), bringBack, u"용공금액과 다름 -8000"_s},
        {"an excess by button", agreeing(), [](Visit& v) { settle(v, 0, 140500, 10000); }, u""_s},
        {"an excess keyed", agreeing(), [](Visit& v) { settle(v, -10000, 140500, 10000); }, u""_s},
        {"parts that leave 500", agreeing(), [](Visit& v) { settle(v, 130000); }, u"입금내역과 다름 -500"_s},
        {"unanswered", paid(), [](Visit& v) { answer(v, PaymentState::Unknown); },
         u"카드결제 확인중 130500"_s},
        {"never charged", paid(), [](Visit& v) { answer(v, PaymentState::Released); },
         u"카드 미승인 130500"_s},
        {"charged otherwise", paid(), [](Visit& v) { v.payments[0].charged = Won(163040); },
         u"승인금액과 다름 -32540"_s},
        {"the approval's slip is gone", paid(), [](Visit& v) { v.goods.clear(), v.collections.clear(); },
         u"승인이 전표에 없음 130500"_s},
        {"charged twice", paid(),
         [](Visit& v) { v.payments << payment(PaymentState::Approved, 130500, u"2"_s); },
         u"승인이 전표에 없음 130500"_s},
        {"nobody's debt", agreeing(), [](Visit& v) { v.balance.reset(); }, u"거래처 채권 없음 130500"_s},
        {"two collections", agreeing(), [](Visit& v) { v.collections << v.collections[0]; },
         u"입금전표 두장 130500"_s},
    };
    for (const auto& [what, visit, change, differences] : cases) {
        Visit changed = visit;
        change(changed);
        EXPECT_EQ(describe(differencesOf(changed)), differences) << what;
    }
}

TEST(VisitChecks, NameWhatShowsBesideOthersOnly) {
    Visit other = agreeing();
    other.gCode = u"0017"_s;
    const QList<CheckedVisit> both = checkVisits({agreeing(), other});
    ASSERT_EQ(both.size(), 2);
    EXPECT_EQ(describe(both[1].differences), u"번호에 다른 거래처 130500"_s);
    // An approval that was put on another number's slip is not lost.
    Visit moved = paid();
    moved.junNo = u"7001"_s;
    moved.payments.clear();
    Visit emptied = paid();
    emptied.goods.clear();
    emptied.collections.clear();
    EXPECT_TRUE(checkVisits({emptied, moved}).isEmpty());
    EXPECT_EQ(checkVisits({emptied}).size(), 1);
}

class Visits : public ::testing::Test {
  protected:
    Visits() {
        device.execute(
            uR"(
            INSERT INTO PDAUSER (userID, vatMode) VALUES ('A', '2'), ('B', '');
            INSERT INTO GARAE (GCODE, CJMONEY) VALUES ('0016', '700');
            INSERT INTO MTM (DDate, GCode, GName, JunNo, WorkGubun, PCode, Box, MMoney, BMoney, YMoney, UserID, DTime)
                VALUES ('2026-11-21', '0016', '강', '5001', '발행', '1001', '2', '1003', '100', '7', 'A', '09:00'),
                       ('2026-11-21', '0016', '강', '5001', '발행', '1002', '1', '1000', '100', '0', 'A', '09:00'),
                       ('2026-11-21', '0017', '나', '5001', '발행', '1001', '1', '10', '1', '0', 'B', '09:00'),
                       ('2026-11-20', '0016', '강', '5001', '발행', '1001', '1', '10', '1', '0', 'A', '09:00');
            INSERT INTO YTM (DDate, GCode, JunNo, PCode, FBox, YMONEY, GMONEY, YSAMT, UserID)
                VALUES ('2026-11-21', '0016', '5001', '1001', '1', '30', '4', '5', 'A');
            INSERT INTO MTMOK (DDate, Gubun, GCode, JunNo, UserID, MMoney) VALUES ('2026-11-21', '매출', '0016', '5001', 'A', '9');
            INSERT INTO PAYJOURNAL (Number, State, Charged, DDate, GCode, JunNo, UserID)
                VALUES ('1', 'unknown', '9', '2026-11-21', '0016', '5001', 'A'),
                       ('2', 'refused', '9', '2026-11-21', '0018', '5009', 'A');
            INSERT INTO PRINTLOG (DDate, JunNo, UserID, Document) VALUES ('2026-11-21', '5001', 'A', '입금표'))"_s);
    }
    test::TestDevice device;
};

TEST_F(Visits, AreReadWhole) {
    const auto all = visitsOfDay(kDay, {});
    ASSERT_TRUE(all && all->size() == 2);
    EXPECT_EQ(visitsOfDay(kDay, u"B")->size(), 1);
    EXPECT_FALSE(all->at(1).balance);
    const auto visits = visitsOfNumber(kDay, u"5001", u"A");
    ASSERT_TRUE(visits && visits->size() == 1);
    const Visit* visit = &visits->first();
    EXPECT_EQ(visit->goods.size(), 2);
    // 2,003 of supply with 10 per cent, to ten won, and the deposit.
    EXPECT_EQ(visit->goodsTotal(), Won(2200 + 7));
    EXPECT_EQ(visit->containerWorth(), Won(34));
    ASSERT_NE(visit->collection(), nullptr);
    EXPECT_TRUE(visit->hasOpenPayment());
    EXPECT_EQ(visit->prints.size(), 1);
    EXPECT_EQ(visit->balance, Won(700));
    EXPECT_EQ(unclosedDays(u"A", kDay), QStringList{u"2026-11-20"_s});
    device.execute(u"INSERT INTO DAYCLOSE (DDate, UserID) VALUES ('2026-11-20', 'A')"_s);
    EXPECT_TRUE(unclosedDays(u"A", kDay).isEmpty());
    device.execute(u"DROP TABLE YTM"_s);
    EXPECT_FALSE(visitsOfDay(kDay, {}));
}

TEST_F(Visits, LeaveATraceWhenDeleted) {
    const QString trace =
        u"SELECT group_concat(Document || JunNo || UserID || GCode || Total || DeletedBy, ' ') FROM DELETED"_s;
    ASSERT_TRUE(removeCollection(kDay, u"5009", u"A"));
    EXPECT_EQ(device.value(trace), u""_s);
    ASSERT_TRUE(sales::deleteSlip(kDay, u"5001", true, u"C"));
    EXPECT_EQ(device.value(trace),
              u"거래명세서5001A00162207C 거래명세서5001B001711C 입금표5001A00169C 용공인수증5001A001634C"_s);
    EXPECT_EQ(deletionsOfDay(kDay, u"B")->size(), 1);
    EXPECT_EQ(deletionsOfDay(kDay, u"C")->size(), 4);
    // Saved without lines, a slip is gone, too.
    ASSERT_EQ(sales::saveSlip(u"A", u"2026-11-20", u"5001"), sales::SaveOutcome::Empty);
    EXPECT_EQ(deletionsOfDay(u"2026-11-20", {})->size(), 1);
    // A terminal whose database has no such table deletes as ever.
    device.execute(
        u"DROP TABLE DELETED; INSERT INTO MTM (DDate, JunNo, UserID) VALUES ('2026-11-21', '1', 'A')"_s);
    EXPECT_TRUE(sales::deleteSlip(kDay, u"1", true, u"A"));
    EXPECT_EQ(device.value(u"SELECT COUNT(*) FROM MTM WHERE JunNo = '1'"_s), u"0"_s);
}

}  // namespace
}  // namespace books
