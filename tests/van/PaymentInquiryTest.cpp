#include "van/PaymentInquiry.h"

#include <gtest/gtest.h>

#include <QDateTime>

#include "platform/Clock.h"
#include "support/TestDevice.h"

namespace van {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(PaymentInquiry, BelievesOnlyWhatTellsOfThisPayment) {
    test::TestDevice device;
    const QDateTime sent(QDate(2026, 11, 21), QTime(9, 5));
    books::JournalPayment payment;
    payment.number = QString(32, u'a');
    payment.charged = platform::Won(1000);
    payment.slip.JunNo = u"5001"_s;
    payment.slip.MSGSENDTIME = sent.toString(u"yyyyMMddHHmmss"_s);
    platform::clock::set(sent.addSecs(60));
    ASSERT_TRUE(books::notePayment(payment));

    using enum PaymentVerdict;
    const QString own = payment.number.toUpper();
    const QString another(32, u'b'), ok = u"0000"_s, no;
    const struct {
        const char* what;
        QString code, transaction, amount, deposited, answered;
        PaymentVerdict verdict;
        QString before = {};  ///< A statement.
        int secondsLater = 60;
    } cases[] = {
        {"approved", ok, u"7"_s, no, no, own, Approved},
        {"approved without a number", ok, no, no, no, own, Open},
        {"refused", u"0012"_s, no, no, no, own, NotCharged},
        {"no code", no, no, no, no, own, Open},
        {"another's", ok, u"7"_s, u"1000"_s, u"999"_s, another, Open},
        {"the last one", ok, u"7"_s, u"1000"_s, u"999"_s, no, Approved},
        {"of another amount", ok, u"7"_s, u"1001"_s, u"999"_s, no, Open},
        {"in cash", ok, u"7"_s, u"1000"_s, u"0"_s, no, Open},
        {"refused, perhaps another", u"0012"_s, no, u"1000"_s, u"999"_s, no, Open},
        {"too long ago", ok, u"7"_s, u"1000"_s, u"999"_s, no, Open, no, 24 * 60 * 60},
        {"of a time to come", ok, u"7"_s, u"1000"_s, u"999"_s, no, Open, no, -60},
        {"on a slip", ok, u"8"_s, u"1000"_s, u"999"_s, no, Open,
         u"INSERT INTO MTMOK (JunNo, BANKTRANNO) VALUES ('5000', '8')"_s},
        {"not the newest", ok, u"7"_s, u"1000"_s, u"999"_s, no, Open,
         u"INSERT INTO PAYJOURNAL (Number, State) VALUES ('c', 'refused')"_s},
    };
    for (const auto& c : cases) {
        if (!c.before.isEmpty()) device.execute(c.before);
        platform::clock::set(sent.addSecs(c.secondsLater));
        books::HostReply reply;
        reply.responseCode = c.code;
        reply.transactionNumber = c.transaction;
        reply.transactionAmount = c.amount;
        reply.depositedAmount = c.deposited;
        EXPECT_EQ(judge(payment, reply, c.answered), c.verdict) << c.what;
    }
    platform::clock::set({});
}

TEST(PaymentInquiry, IsKeptInTheJournal) {
    test::TestDevice device;
    const struct {
        QString code, answered, state;
        bool isKept;
    } cases[] = {
        {u"0000"_s, u"A"_s, u"approved"_s, true},
        {u"0012"_s, u"A"_s, u"refused"_s, true},
        {u"0019"_s, u"A"_s, u"released"_s, true},
        {u"0012"_s, u"B"_s, u"sent"_s, false},
    };
    for (const auto& c : cases) {
        device.execute(u"DELETE FROM PAYJOURNAL; DELETE FROM MTMOK"_s);
        books::JournalPayment payment;
        payment.number = u"A"_s;
        payment.slip.Gubun = books::kSimplePaymentSlip.toString();
        ASSERT_TRUE(books::notePayment(payment));
        books::HostReply reply;
        reply.responseCode = c.code;
        reply.transactionNumber = u"7"_s;
        const SettledPayment settled = settle(payment, reply, c.answered);
        EXPECT_EQ(settled.isKept, c.isKept) << c.state.toStdString();
        EXPECT_EQ(settled.slip.has_value(), c.state == u"approved");
        EXPECT_EQ(device.value(u"SELECT State FROM PAYJOURNAL"_s), c.state);
        EXPECT_EQ(device.value(u"SELECT BANKTRANNO FROM MTMOK"_s), settled.slip ? u"7"_s : QString());
    }
}

TEST(PaymentInquiry, TellsAnotherAmountThanWasAsked) {
    books::HostReply reply;
    reply.transactionAmount = u"000130500"_s;
    reply.transactionNumber = u"000000000007"_s;
    EXPECT_TRUE(tellApprovedAmount(reply, platform::Won(130500)).isEmpty());
    const QString told = tellApprovedAmount(reply, platform::Won(163040));
    for (const QStringView part : {u"130,500", u"163,040", u"000000000007"}) EXPECT_TRUE(told.contains(part));
}

}  // namespace
}  // namespace van
