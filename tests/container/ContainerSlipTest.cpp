#include <gtest/gtest.h>

#include "container/ContainerLine.h"
#include "container/ContainerStore.h"
#include "container/WorkingContainers.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using container::ContainerAmounts;
using container::ContainerCounts;
using platform::Won;

TEST(ContainerAmounts, FollowTheCountsAndTheProduct) {
    const container::ContainerPrices beer{Won(2000), Won(1560), 12, Won(200), Won(10)};
    const container::ContainerPrices draught{Won(30000), Won(700), 0, Won(200), Won(10)};
    const struct {
        ContainerCounts counts;
        container::ContainerPrices prices;
        ContainerAmounts expected;
    } cases[] = {
        {{.bottles = 7, .emptyCrates = 2, .filledCrates = 3},
         beer,
         {Won(10000), Won(3 * 1560 + 910), Won(1000), Won(430)}},
        {{.bottles = 5, .emptyCrates = 0, .filledCrates = 0}, beer, {Won(), Won(650), Won(), Won(50)}},
        // A share of a won is cut off.
        {{.bottles = 1, .emptyCrates = 0, .filledCrates = 0},
         {Won(0), Won(1000), 12, Won(0), Won(0)},
         {Won(), Won(83), Won(), Won()}},
        // A mistyped count stays at the end of 64 bits.
        {{.bottles = INT64_MAX, .emptyCrates = INT64_MAX, .filledCrates = INT64_MAX},
         beer,
         {Won(INT64_MAX), Won(INT64_MAX), Won(INT64_MAX), Won(INT64_MAX)}},
        // Without bottles in a crate only the filled crates carry their deposit.
        {{.bottles = 4, .emptyCrates = 0, .filledCrates = 2},
         draught,
         {Won(60000), Won(1400), Won(400), Won(40)}},
    };
    for (const auto& test : cases) {
        const ContainerAmounts amounts = containerAmounts(test.counts, test.prices);
        EXPECT_EQ(amounts, test.expected) << amounts.crates.value() << ' ' << amounts.bottles.value() << ' '
                                          << amounts.crateFee.value() << ' ' << amounts.bottleFee.value();
    }
}

TEST(ContainerSlip, MovesTheCollectionThatAnUnpaidCardHasReplaced) {
    test::TestDevice device;
    const QString line =
        u"INSERT INTO %1 (DDate,GCode,JunNo,PCode,FBox,NBox,Bon,YMONEY,GMONEY%2) VALUES "
        "('2026-11-21','0001','6001','1001','0','0','9',%3); "_s;
    const QString slip =
        u"INSERT INTO %1 (DDate,GCode,JunNo,UserID,Gubun,MMoney,YDMoney,UnderMoney%2) VALUES "
        "('2026-11-21','0001','6001','A','매출','9000','3000','6000'%3); "_s;
    device.execute(line.arg(u"YTM"_s, u",UserID"_s, u"'1000','2000','A'"_s) +
                   line.arg(u"YTEMP"_s, QString(), u"'1500','3500'"_s) +
                   slip.arg(u"MTMOK"_s, QString(), QString()) +
                   slip.arg(u"PAYJOURNAL"_s, u",Number,State"_s, u",'1','prepared'"_s));
    // The fee that is keyed changes alone, though the line's own statement reads no fees.
    ASSERT_TRUE(
        container::replaceAmount({u"1001"_s, u"0"_s, u"0"_s, u"9"_s}, &ContainerAmounts::bottleFee, Won(40)));
    EXPECT_EQ(container::workingSums(), (ContainerAmounts{Won(1500), Won(3500), Won(), Won(40)}));
    ASSERT_EQ(container::saveSlip(u"A", u"2026-11-21", u"6001", u"0001"), container::SaveOutcome::Saved);
    EXPECT_EQ(device.value(u"SELECT GSAMT FROM YTM"_s), u"40"_s);
    for (const QStringView table : {u"MTMOK", u"PAYJOURNAL"}) {
        EXPECT_EQ(device.value(u"SELECT YDMoney || ',' || UnderMoney FROM %1"_s.arg(table)), u"5000,4000"_s);
    }
}

}  // namespace
