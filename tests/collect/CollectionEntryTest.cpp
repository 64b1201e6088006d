#include "collect/CollectionEntry.h"

#include <gtest/gtest.h>

#include "collect/Settlement.h"
#include "support/TestDevice.h"

namespace collect {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

namespace {

const books::SlipIdentity kSlip{u"2024-05-10"_s, u"5001"_s, u"A"_s, u"0001"_s};

class CollectionEntryTest : public testing::Test {
  protected:
    CollectionEntryTest() {
        device_.execute(
            u"INSERT INTO GARAE (GCODE, CJMONEY) VALUES ('0001', '9000');"
            "INSERT INTO PDAUSER (userID, vatMode) VALUES ('A', '2');"
            "INSERT INTO MTM (DDate, GCode, JunNo, PCode, MMoney, BMoney, YMoney, GMoney, UserID) SELECT "
            "'2024-05-10', '0001', '5001', column1, '10007', '1000', '500', '60', 'A' FROM "
            "(VALUES ('1001'), ('1002'))"_s);
    }
    static OpenedEntry open(const QString& gCode = u"0001"_s) {
        return openEntry({kSlip.date, kSlip.junNo, kSlip.userId, gCode});
    }

    test::TestDevice device_;
};

TEST_F(CollectionEntryTest, TakesContainersOverAndLeavesOthersAlone) {
    EXPECT_EQ(open(u"0002"_s).amounts.total, Won()) << "it is another customer's";
    CollectionEntry entry;
    const auto opening =
        entry.open(kSlip, true, {.recovery = Won(140), .isRecoveryMoved = false, .kept = {}});
    EXPECT_TRUE(opening.hasTakenOver && !opening.asked && entry.kept());
    EXPECT_EQ(entry.crateDeposit(), Won(1000));
    settleInCash(entry.amounts());
    ASSERT_TRUE(entry.save(u"가람"_s) && entry.isPaidAsShown());
    device_.execute(u"UPDATE MTMOK SET YDMoney = '200', UnderMoney = '-60'"_s);
    entry.open(kSlip, true, {.recovery = {}, .isRecoveryMoved = true, .kept = {}});
    EXPECT_EQ(entry.amounts().cash, Won(22940)) << "settled anew";
    EXPECT_EQ(entry.crateDeposit(), Won(1000));
    EXPECT_FALSE(entry.isPaidAsShown());
    entry.open({kSlip.date, kSlip.junNo, kSlip.userId, u"0002"_s}, true, {});
    EXPECT_TRUE(entry.isOthers() && !open(u"0002"_s).saved && entry.remove());
    EXPECT_EQ(device_.value(u"SELECT count(*) FROM MTMOK"_s), u"1"_s);
    device_.execute(u"UPDATE MTMOK SET Gubun = '단순결제', JunNo = '7001', GDMoney = '500'"_s);
    const auto simple = openEntry({kSlip.date, u"7001"_s, kSlip.userId, {}});
    EXPECT_EQ(simple.amounts.total, simple.saved->amounts().total) << "that of a simple payment holds more";
}

TEST_F(CollectionEntryTest, GoesOnWithWhatWasKeyed) {
    const books::SlipIdentity& slip = kSlip;
    books::KeptSettlement kept{slip, open().amounts, open().amounts, std::nullopt};
    keySales(kept.keyed, Won(20000));
    settleInCash(kept.keyed);
    keyEarlierReceivable(kept.keyed, Won(700));
    EXPECT_EQ(goOn(kept, slip, open(), std::nullopt), kept.keyed);
    EXPECT_FALSE(goOn(kept, {slip.date, slip.junNo, slip.userId, u"0002"_s}, open(u"0002"_s), std::nullopt));
    EXPECT_FALSE(goOn(kept, slip, open(), Won(6000))) << "containers came back meanwhile";

    // A line less: what was keyed of the sale goes with it, and cash pays what there is now.
    const OpenedEntry before = open();
    device_.execute(u"DELETE FROM MTM WHERE PCode = '1002'"_s);
    const OpenedEntry changed = open();
    const auto amounts = goOn(kept, slip, changed, std::nullopt);
    ASSERT_TRUE(amounts);
    EXPECT_EQ(amounts->total, changed.amounts.total);
    EXPECT_EQ(amounts->cash, changed.amounts.total);
    EXPECT_EQ(amounts->earlierReceivable, Won(700));
    for (void (*const settle)(books::SettlementAmounts&) : {settleByCard, settleInCash, settleOnCredit}) {
        for (const Won recovery : {Won(), Won(100), changed.amounts.total}) {
            books::SettlementAmounts due = changed.amounts;
            kept.keyed = before.amounts;
            for (books::SettlementAmounts* each : {&kept.keyed, &due}) {
                keyNonLiquor(*each, Won(30));
                keyRecovery(*each, recovery);
                settle(*each);
                if (!recovery.isZero()) keyEarlierReceivable(*each, Won(700));
            }
            EXPECT_EQ(goOn(kept, slip, changed, std::nullopt), due);
        }
    }
    // What exceeds one of the totals was worked out from the old one, and a saved settlement stands.
    for (const auto& [from, to] : {std::pair(before, changed), std::pair(changed, before)}) {
        kept.opened = kept.keyed = from.amounts;
        keyRecovery(kept.keyed, changed.amounts.total + Won(1));
        EXPECT_FALSE(goOn(kept, slip, to, std::nullopt));
    }
    kept.opened = kept.keyed = before.amounts;
    OpenedEntry saved = changed;
    saved.saved.emplace();
    EXPECT_FALSE(goOn(kept, slip, saved, std::nullopt));
    kept.recovery = Won(100);
    EXPECT_FALSE(goOn(kept, slip, changed, kept.recovery)) << "its containers are to be taken over anew";

    // Containers worth all of the sale leave nothing to pay, until a line is added.
    kept = {slip, changed.amounts, changed.amounts, std::nullopt};
    keyRecovery(kept.keyed, kept.keyed.total);
    device_.execute(u"UPDATE MTM SET YMoney = '570'"_s);
    EXPECT_EQ(goOn(kept, slip, open(), std::nullopt)->unpaid, Won(70));
}

}  // namespace
}  // namespace collect
