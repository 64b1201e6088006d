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

    const QString own = payment.number.toUpper();
    const struct {
        const char* what;
        QString code, transaction, amount, deposited, answered;
        PaymentVerdict verdict;
        QString before = {};  ///< A statement.
        int secondsLater = 60;
    } cases[] = {
        {"approved", u"0000"_s, u"7"_s, {}, {}, own, PaymentVerdict::Approved},
        {"approved without a number", u"0000"_s, {}, {}, {}, own, PaymentVerdict::Open},
        {"refused", u"0012"_s, {}, {}, {}, own, PaymentVerdict::NotCharged},
        {"no code", {}, {}, {}, {}, own, PaymentVerdict::Open},
        {"another's", u"0000"_s, u"7"_s, u"1000"_s, u"999"_s, QString(32, u'b'), PaymentVerdict::Open},
        {"the last one", u"0000"_s, u"7"_s, u"1000"_s, u"999"_s, {}, PaymentVerdict::Approved},
        {"of another amount", u"0000"_s, u"7"_s, u"1001"_s, u"999"_s, {}, PaymentVerdict::Open},
        {"in cash", u"0000"_s, u"7"_s, u"1000"_s, u"0"_s, {}, PaymentVerdict::Open},
        {"refused, perhaps another", u"0012"_s, {}, u"1000"_s, u"999"_s, {}, PaymentVerdict::Open},
        {"too long ago", u"0000"_s, u"7"_s, u"1000"_s, u"999"_s, {}, PaymentVerdict::Open, {}, 24 * 60 * 60},
        {"of a time to come", u"0000"_s, u"7"_s, u"1000"_s, u"999"_s, {}, PaymentVerdict::Open, {}, -60},
        {"on a slip",
         u"0000"_s,
         u"8"_s,
         u"1000"_s,
         u"999"_s,
         {},
         PaymentVerdict::Open,
         u"INSERT INTO MTMOK (JunNo, BANKTRANNO) VALUES ('5000', '8')"_s},
        {"not the newest",
         u"0000"_s,
         u"7"_s,
         u"1000"_s,
         u"999"_s,
         {},
         PaymentVerdict::Open,
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

TEST(PaymentInquiry, TellsAnotherAmountThanWasAsked) {
    books::HostReply reply;
    EXPECT_TRUE(tellApprovedAmount(reply, platform::Won(130500)).isEmpty()) << "it names none";
    reply.transactionAmount = u"000130500"_s;
    reply.transactionNumber = u"000000000007"_s;
    EXPECT_TRUE(tellApprovedAmount(reply, platform::Won(130500)).isEmpty());
    const QString told = tellApprovedAmount(reply, platform::Won(163040));
    for (const QStringView part : {u"130,500", u"163,040", u"000000000007"}) EXPECT_TRUE(told.contains(part));
}

}  // namespace
}  // namespace van
