#include "totals/Reconciliation.h"

#include <gtest/gtest.h>

#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using totals::Difference;

struct Case {
    const char* what;
    QString slips;  ///< Each number/user/card amount, and when it was sent if not at noon.
    QString count, sum, listTotal, list;
    QString result;        ///< Agreed or not, the terminal's count and sum, the differences.
    QString journal = {};  ///< Each state/day/number of a payment of 900.
};

QString describe(const totals::Reconciliation& result) {
    QString text = (result.isAgreed() ? u"same "_s : u"other "_s) + QString::number(result.count) + u' ' +
                   platform::formatWon(result.sum);
    for (const Difference& difference : result.differences) {
        text += u", "_s + QStringView(u"-+!")[int(difference.kind)] + difference.number.last(2);
        if (difference.slip)
            text += u' ' + difference.slip->UserID + platform::formatWon(difference.slip->CardMoney);
        if (difference.payment) text += u" host "_s + platform::formatWon(difference.payment->amount);
        if (difference.sent) text += u' ' + difference.sent->GName;
    }
    if (result.openPayments > 0) text += u" open %1"_s.arg(result.openPayments);
    return text + (result.repeated.isEmpty() ? u""_s : u" alike %1"_s.arg(result.repeated.size()));
}

TEST(Reconciliation, NamesEveryDifference) {
    const QString one = u"000000000001 090512 1000\n"_s;
    const QString two = u"000000000002 091000 2000\n"_s;
    const QString sent = u"000000000001 090000 900\n"_s;
    const QString later = u"000000000002 091000 900\n"_s;
    const QString both = u"1/A/1000 2/B/2000"_s;
    const QString night = u"1/A/1000/20261120235959 2/B/2000"_s;
    const QString days = u"1/A/1000/20261119120000 2/A/5/20261122000000"_s;
    const Case cases[] = {
        {"nothing", {}, u"0"_s, u"0"_s, u"0"_s, {}, u"same 0 0"_s},
        {"two users", both, u"2"_s, u"3000"_s, u"2"_s, one + two, u"same 2 3000"_s},
        {"not at the host", both, u"1"_s, u"1000"_s, u"1"_s, one, u"other 2 3000, -02 B2000"_s},
        {"no slip", u"1/A/1000"_s, u"2"_s, u"3000"_s, u"2"_s, one + two, u"other 1 1000, +02 host 2000"_s},
        {"each", u"2/A/1000"_s, u"1"_s, u"1000"_s, u"1"_s, one, u"other 1 1000, +01 host 1000, -02 A1000"_s},
        {"amount", u"1/A/900"_s, u"1"_s, u"1000"_s, u"1"_s, one, u"other 1 900, !01 A900 host 1000"_s},
        {"twice", u"1/A/9 1/B/9"_s, u"1"_s, u"1000"_s, u"1"_s, one,
         u"other 2 18, !01 A9 host 1000, -01 B9 alike 2"_s},
        {"cash has a number", u"1/A/1000 2/A/0"_s, u"1"_s, u"1000"_s, u"1"_s, one, u"same 1 1000"_s},
        {"across midnight", night, u"2"_s, u"3000"_s, u"2"_s, one + two, u"same 2 3000"_s},
        {"other days", days, u"1"_s, u"1000"_s, u"1"_s, one, u"other 0 0, +01 host 1000"_s},
        {"behind the cut", both, u"2"_s, u"3000"_s, u"2"_s, one, u"same 2 3000"_s},
        {"before the cut", both, u"2"_s, u"3000"_s, u"2"_s, two, u"other 2 3000, -01 A1000"_s},
        {"a host without a list", both, u"2"_s, u"3000"_s, {}, {}, u"same 2 3000"_s},
        {"the same, other sum", both, u"2"_s, u"2000"_s, {}, {}, u"other 2 3000"_s},
        {"on its slip", u"1/A/900"_s, u"1"_s, u"900"_s, u"1"_s, sent, u"same 1 900"_s,
         u"approved/20261121/1"_s},
        {"on no slip", u"1/A/900"_s, u"2"_s, u"1800"_s, u"2"_s, sent + later,
         u"other 1 900, +02 host 900 일곱 alike 2"_s, u"approved/20261121/2"_s},
        {"on neither", u"1/A/900"_s, u"1"_s, u"900"_s, u"1"_s, sent, u"other 1 900, -02 일곱 alike 2"_s,
         u"approved/20261121/2"_s},
        {"of yesterday or refused", u"1/A/900"_s, u"1"_s, u"900"_s, u"1"_s, sent, u"same 1 900"_s,
         u"approved/20261120/2 refused/20261121/"_s},
        {"open", u"1/A/900"_s, u"1"_s, u"900"_s, u"1"_s, sent, u"other 1 900 open 1"_s,
         u"unknown/20261121/"_s},
        {"no list", u"1/A/1000"_s, u"2"_s, u"3000"_s, u"2"_s, one + u"2 0 2000\n"_s, u"other 1 1000"_s},
    };
    for (const auto& [what, slips, count, sum, listTotal, list, expected, journal] : cases) {
        test::TestDevice device;
        for (const QString& slip : slips.split(u' ', Qt::SkipEmptyParts)) {
            const QStringList parts = slip.split(u'/');
            device.execute(
                u"INSERT INTO MTMOK (JunNo, UserID, GCode, CardMoney, MSGSENDTIME, BANKTRANNO) VALUES "
                "('1001', '%1', '7', '%2', '%3', '00000000000%4')"_s.arg(
                    parts[1], parts[2], parts.value(3, u"20261121120000"_s), parts[0]));
        }
        for (const QString& payment : journal.split(u' ', Qt::SkipEmptyParts)) {
            const QStringList parts = payment.split(u'/');
            device.execute(
                u"INSERT INTO PAYJOURNAL (State, Kind, Charged, GCode, GName, MSGSENDTIME, BANKTRANNO) "
                u"VALUES "
                "('%1', 'card', '900', '7', '일곱', '%2', '%3')"_s.arg(
                    parts[0], parts[1] + u"120000"_s,
                    parts[2].isEmpty() ? parts[2] : u"00000000000"_s + parts[2]));
        }
        print::HostSummary summary;
        summary.transferCount = count;
        summary.transaction = sum;
        const auto result =
            totals::reconcile(QDate(2026, 11, 21), totals::readHostDay(summary, listTotal, list));
        ASSERT_TRUE(result) << what;
        EXPECT_EQ(describe(*result), expected) << what;
    }
}

}  // namespace
