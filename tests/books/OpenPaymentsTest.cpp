#include "books/OpenPayments.h"

#include <gtest/gtest.h>

#include "support/TestDevice.h"

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

const QString kSale =
    u"INSERT INTO MTM (DDate, GCode, JunNo, WorkGubun, UserID) VALUES ('2024-05-10', '1', '5001', '미발행', 'A')"_s;

JournalPayment paymentOf(QStringView code, QStringView gubun, QStringView junNo, std::int64_t charged,
                         QStringView date = u"2024-05-10", QStringView user = u"A") {
    JournalPayment payment;
    payment.number = u"%1%2%3"_s.arg(junNo, user, date);
    payment.charged = Won(charged);
    payment.slip.GCode = code.toString();
    payment.slip.Gubun = gubun.toString();
    payment.slip.JunNo = junNo.toString();
    payment.slip.DDate = date.toString();
    payment.slip.UserID = user.toString();
    payment.slip.CardMoney = payment.slip.InMoney = Won(charged);
    return payment;
}

TEST(OpenPayments, HoldBackTheirCustomerAlone) {
    const QStringView sale = kCollectionOfSale, simple = kSimplePaymentSlip, nobody = kUnregisteredCustomer;
    const struct {
        const char* what;
        JournalPayment open, wanted;
        bool isInTheWay;
    } cases[] = {
        {"another number", paymentOf(u"1", sale, u"5001", 10), paymentOf(u"1", sale, u"5002", 20), true},
        {"another day and user", paymentOf(u"1", sale, u"5001", 10),
         paymentOf(u"1", sale, u"5002", 20, u"2024-05-11", u"B"), true},
        {"a simple payment beside a visit", paymentOf(u"1", sale, u"5001", 10),
         paymentOf(u"1", simple, u"7001", 20), true},
        {"the reverse", paymentOf(u"1", simple, u"7001", 10), paymentOf(u"1", sale, u"5001", 20), true},
        {"another customer", paymentOf(u"1", sale, u"5001", 10), paymentOf(u"2", sale, u"5002", 10), false},
        {"another customer's simple payment", paymentOf(u"1", simple, u"7001", 10),
         paymentOf(u"2", simple, u"7002", 10), false},
        {"one slip, whosever", paymentOf(u"1", sale, u"5001", 10), paymentOf(u"2", sale, u"5001", 20), true},
        {"nobody known, both simple", paymentOf(nobody, simple, u"7001", 10),
         paymentOf(u"1", simple, u"7002", 20), true},
        {"nobody known, one amount", paymentOf(nobody, simple, u"7001", 10),
         paymentOf(u"1", sale, u"5001", 10), true},
        {"nobody known, another amount", paymentOf(nobody, simple, u"7001", 10),
         paymentOf(u"1", sale, u"5001", 20), false},
        {"no code", paymentOf(u"", sale, u"5001", 10), paymentOf(u"", sale, u"5002", 20), false},
    };
    for (const auto& [what, open, wanted, isInTheWay] : cases) {
        const test::TestDevice device;
        ASSERT_TRUE(notePayment(open)) << what;
        EXPECT_EQ(findInTheWay(unsettledPayments(), wanted).has_value(), isInTheWay) << what;
        EXPECT_EQ(notePayment(wanted), !isInTheWay) << what;
    }
}

TEST(OpenPayments, AreNotedInAnOlderTerminalsJournal) {
    test::TestDevice device;
    device.execute(kSale);
    for (const auto* const column : {"SaleTotal", "ContainerWorth"})
        device.execute(u"ALTER TABLE PAYJOURNAL DROP COLUMN "_s + QLatin1StringView(column));
    const JournalPayment payment = paymentOf(u"1", kCollectionOfSale, u"5001", 1000);
    ASSERT_TRUE(saveForCard(payment.slip) && notePayment(payment));
    EXPECT_FALSE(unsettledPayments().value(0).saleTotal);
    EXPECT_TRUE(approvePayment(payment.number, u"T1"));
    EXPECT_TRUE(preparedPayments().isEmpty());
}

TEST(OpenPayments, AreOpenAgainAfterAMistake) {
    test::TestDevice device;
    device.execute(kSale);
    const QString said =
        u"SELECT State || BANKTRANNO || (SELECT WorkGubun FROM MTM) || (SELECT "
        "count(nullif(BANKTRANNO, '')) || '/' || count(*) FROM MTMOK) FROM PAYJOURNAL"_s;
    for (const QStringView gubun : {kCollectionOfSale, kSimplePaymentSlip}) {
        const JournalPayment payment = paymentOf(u"1", gubun, u"5001", 1000);
        const bool isSimple = payment.slip.isSimplePayment();
        ASSERT_TRUE(notePayment(payment));
        EXPECT_FALSE(reopenPayment(payment.number)) << "it is open";
        ASSERT_TRUE(approvePayment(payment.number, u"T1"));
        ASSERT_TRUE(reopenPayment(payment.number));
        EXPECT_EQ(device.value(said), isSimple ? u"unknown미발행0/0"_s : u"unknown미발행0/1"_s);
        ASSERT_TRUE(approvePayment(payment.number, u"T2"));
        EXPECT_EQ(device.value(said), isSimple ? u"approvedT2미발행1/1"_s : u"approvedT2결제1/1"_s);
        device.execute(u"DELETE FROM PAYJOURNAL; DELETE FROM MTMOK; UPDATE MTM SET WorkGubun = '미발행'"_s);
        ASSERT_TRUE(notePayment(payment) && settlePayment(payment.number, PaymentState::Released));
        ASSERT_TRUE(reopenPayment(payment.number));
        EXPECT_FALSE(notePayment(paymentOf(u"1", kCollectionOfSale, u"5002", 1000)));
        device.execute(u"DELETE FROM PAYJOURNAL; DELETE FROM MTMOK"_s);
    }
}

TEST(OpenPayments, AreKnownAfterTheirSlipHasGone) {
    test::TestDevice device;
    device.insert(u"MTM",
                  {{u"DDate", u"2024-05-10"}, {u"GCode", u"1"}, {u"JunNo", u"5001"}, {u"UserID", u"A"}});
    const JournalPayment payment = paymentOf(u"1", kCollectionOfSale, u"5001", 1000);
    const auto& slip = payment.slip;
    const auto lost = [&](const QString& code) {
        return approvalWithoutSlip({slip.DDate, slip.JunNo, slip.UserID, code}).has_value();
    };
    ASSERT_TRUE(notePayment(payment) && approvePayment(payment.number, u"T1"));
    EXPECT_FALSE(lost(u"1"_s) || putApprovalBack(payment.number)) << "it is on its slip";
    ASSERT_TRUE(removeCollection(slip.DDate, slip.JunNo, slip.UserID));
    EXPECT_TRUE(lost(u"1"_s) && !lost(u"2"_s));
    for (const QString& user : {u"A"_s, u"B"_s}) {
        const SlipIdentity again{slip.DDate, u"5003"_s, user, u"1"_s};
        EXPECT_TRUE(approvalWithoutSlip(again) && deletedPayment(again)) << "written again";
    }
    ASSERT_TRUE(putApprovalBack(payment.number));
    EXPECT_FALSE(lost(u"1"_s));
    EXPECT_EQ(loadCollection(slip.DDate, slip.JunNo, slip.UserID)->BANKTRANNO, u"T1"_s);
}

TEST(OpenPayments, AreOfferedBackToTheirOwnOnly) {
    const QStringView nobody = kUnregisteredCustomer;
    const struct {
        QStringView paid, wanted, junNo, user;
        bool isOffered;
    } cases[] = {
        {u"1", u"1", u"7002", u"A", true},
        {u"1", u"2", u"7002", u"A", false},
        {u"1", u"1", u"7002", u"B", false},
        {nobody, nobody, u"7001", u"A", true},  // who is not registered may be anybody, but for the number
        {nobody, nobody, u"7002", u"A", false},
    };
    for (const auto& [paid, wanted, junNo, user, isOffered] : cases) {
        const test::TestDevice device;
        const JournalPayment payment = paymentOf(paid, kSimplePaymentSlip, u"7001", 1000);
        const SlipIdentity slip{payment.slip.DDate, junNo.toString(), user.toString(), wanted.toString()};
        ASSERT_TRUE(notePayment(payment) && approvePayment(payment.number, u"T1"));
        EXPECT_FALSE(deletedPayment(slip)) << "it is on its slip";
        ASSERT_TRUE(removeCollection(slip.date, u"7001", u"A"));
        EXPECT_EQ(deletedPayment(slip).has_value(), isOffered) << junNo.toUtf8().constData();
    }
}

}  // namespace
}  // namespace books
