#include "books/UnsavedSlip.h"

#include <gtest/gtest.h>

#include "sales/PastOrder.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;

const QString kDay = u"2026-11-21"_s;

sales::SlipLine saleLine(const QString& product) {
    return sales::newLine({kDay, u"5001"_s, u"0001"_s, u"가람"_s, {}}, product, {}, {1, 0});
}

// A terminal may end after each of these steps: what it finds then is what the last one left.
TEST(UnsavedSlip, LastsFromTheFirstChangeToTheSave) {
    test::TestDevice device;
    const auto lines = [] { return books::findUnsaved().value_or(books::UnsavedSlip{}).lines; };
    ASSERT_TRUE(sales::reloadSlip(u"A", kDay, u"5001"));
    EXPECT_EQ(lines(), 0);
    ASSERT_TRUE(sales::insertLine(saleLine(u"1001"_s)) && sales::insertLine(saleLine(u"1002"_s)));
    EXPECT_EQ(lines(), 2);
    const auto found = books::findUnsaved();
    EXPECT_EQ(found->userId + found->date + found->gCode + found->gName + found->junNo,
              u"A2026-11-210001가람5001"_s);
    ASSERT_EQ(sales::saveSlip(u"A", kDay, u"5001"), sales::SaveOutcome::Saved);
    EXPECT_EQ(lines(), 0);
    const sales::LineKey key{u"1001"_s, u"1"_s, u"0"_s};
    ASSERT_TRUE(sales::replaceQuantities(key, 7, 0, {}));
    EXPECT_EQ(lines(), 2);
    books::noteGivenUp(books::Working::Sale);
    EXPECT_EQ(lines(), 0);
    sales::deleteLine({u"1001"_s, u"7"_s, u"0"_s});
    EXPECT_EQ(lines(), 1);
    // Opened again it is as it was saved; with nothing left on it there is nothing to go on with.
    ASSERT_TRUE(sales::reloadSlip(u"A", kDay, u"5001"));
    EXPECT_EQ(lines(), 0);
    sales::deleteLine(key);
    sales::deleteLine({u"1002"_s, u"1"_s, u"0"_s});
    EXPECT_EQ(lines(), 0);
    QStringList refused;
    ASSERT_TRUE(sales::replaceLines({saleLine(u"1003"_s)}, &refused));
    EXPECT_EQ(lines(), 1);
}

// Another user's work begins, takes the number, and the slip goes on under the next one with all its lines.
TEST(UnsavedSlip, WaitsForItsUserWhileOthersWork) {
    test::TestDevice device;
    device.execute(u"INSERT INTO PDAUSER (userID, vatMode) VALUES ('A', '2')"_s);
    ASSERT_TRUE(sales::reloadSlip(u"A", kDay, u"5001"));
    sales::SlipLine line = saleLine(u"1001"_s);
    line.setAmounts({platform::Won(1005), platform::Won(999), platform::Won(300), platform::Won(20)});
    ASSERT_TRUE(sales::insertLine(line) && sales::insertLine(saleLine(u"1002"_s)));
    ASSERT_TRUE(books::keepAside(books::findUnsaved().value()));
    EXPECT_FALSE(books::findUnsaved());
    EXPECT_TRUE(sales::isWorkingSlipEmpty());
    EXPECT_TRUE(books::keptSlips(u"B").isEmpty());
    device.execute(u"INSERT INTO MTM (DDate,JunNo,UserID,GCode) VALUES ('2026-11-21','5001','B','0002')"_s);

    QList<books::UnsavedSlip> kept = books::keptSlips(u"A");
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(kept[0].total, platform::Won(1110 + 320)) << "rounded as the user's VAT mode says";
    ASSERT_TRUE(books::takeUp(&kept[0]));
    EXPECT_EQ(kept[0].junNo, u"5002"_s);
    EXPECT_TRUE(books::keptSlips(u"A").isEmpty());
    const auto unsaved = books::findUnsaved().value_or(books::UnsavedSlip{});
    EXPECT_EQ(unsaved.userId + unsaved.junNo, u"A5002"_s);
    EXPECT_EQ(unsaved.lines, 2);
    ASSERT_TRUE(books::keepAside(unsaved));
    books::discardKept(books::keptSlips(u"A").value(0));
    EXPECT_TRUE(books::keptSlips(u"A").isEmpty());
}

TEST(UnsavedSlip, BringsTheSaleOfItsContainersWithIt) {
    test::TestDevice device;
    ASSERT_TRUE(sales::reloadSlip(u"A", kDay, u"5001") && sales::insertLine(saleLine(u"1001"_s)));
    ASSERT_EQ(sales::saveSlip(u"A", kDay, u"5001"), sales::SaveOutcome::Saved);
    // The number of a visit's containers is that of its sale, whoever else brought some back under it.
    device.execute(
        u"INSERT INTO YTM (DDate, GCode, JunNo, UserID) VALUES ('2026-11-21', '0002', '5001', 'B')"_s);
    for (const QString& junNo : {u"5001"_s, u"6001"_s}) {
        device.execute(
            u"DELETE FROM TEMP; DELETE FROM UNSAVED; INSERT INTO UNSAVED VALUES ('YTEMP', 'A', '1'); INSERT "
            u"INTO "
            "YTEMP (DDate, GCode, JunNo, PCode) VALUES ('2026-11-21', '0001', '%1', '9001')"_s.arg(junNo));
        ASSERT_TRUE(books::keepAside(books::findUnsaved().value()));
        auto kept = books::keptSlips(u"A");
        ASSERT_TRUE(kept.size() == 1 && books::takeUp(&kept[0]));
        EXPECT_EQ(kept[0].junNo, junNo);
        EXPECT_EQ(sales::isWorkingSlipEmpty(), junNo == u"6001") << "only a visit's have a sale";
    }
}

}  // namespace
