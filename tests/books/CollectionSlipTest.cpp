#include "books/CollectionSlip.h"

#include <gtest/gtest.h>

#include <QDate>
#include <QDateTime>
#include <QTime>

#include "books/PaymentJournal.h"
#include "platform/Clock.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using books::CollectionSlip;
using platform::Won;

const QString kDate = u"2024-05-10"_s;
const QString kNumber = u"5001"_s;
const QString kUser = u"A"_s;

class Collections : public testing::Test {
  protected:
    Collections() {
        platform::clock::set(QDateTime(QDate(2024, 5, 10), QTime(14, 30)));
        addCustomer(u"0001", u"350000");
        addCustomer(u"0002", u"-500");
    }
    ~Collections() override { platform::clock::set({}); }

    void addCustomer(QStringView code, QStringView receivable) {
        device_.insert(u"GARAE", {{u"GCODE", code}, {u"GNAME", u"가나상회"}, {u"CJMONEY", receivable}});
    }
    void addSalesSlip(QStringView user = kUser) {
        for (const QStringView product : {u"1001", u"1002"}) {
            device_.execute(
                u"INSERT INTO MTM (DDate, GCode, JunNo, PCode, WorkGubun, UserID) VALUES "
                "('2024-05-10', '0001', '5001', '%1', '미발행', '%2')"_s.arg(product, user));
        }
    }

    /// Sales of 110000 with deposits of 5000; unpaid is what is left.
    static CollectionSlip slip(std::int64_t card, std::int64_t cash, std::int64_t recovery = 0,
                               std::int64_t earlier = 0) {
        CollectionSlip slip;
        slip.DDate = kDate;
        slip.GCode = u"0001"_s;
        slip.GName = u"가나상회"_s;
        slip.JunNo = kNumber;
        slip.UserID = kUser;
        slip.setAmounts({.sales = Won(110000),
                         .supply = Won(100000),
                         .vat = Won(10000),
                         .nonLiquor = Won(700),
                         .deposit = Won(5000),
                         .total = Won(115000),
                         .containerRecovery = Won(recovery),
                         .card = Won(card),
                         .cash = Won(cash),
                         .unpaid = Won(115000 - recovery - card - cash),
                         .earlierReceivable = Won(earlier),
                         .previousReceivable = {}},
                        Won(3000));
        return slip;
    }

    QString receivable(QStringView customer = u"0001") {
        return device_.value(u"SELECT CJMONEY FROM GARAE WHERE GCODE = '%1'"_s.arg(customer));
    }
    QString printStates() {
        return device_.value(
            u"SELECT group_concat(state) FROM (SELECT DISTINCT UserID || WorkGubun AS state FROM MTM ORDER BY 1)"_s);
    }
    /// Sends the slip's payment unless it is sent already, and has it approved.
    static std::optional<CollectionSlip> approve(CollectionSlip slip, QStringView transaction,
                                                 const QString& sent) {
        slip.MSGSENDTIME = sent;
        slip.BANKTRANNO.clear();
        if (!books::hasUnsettledPayment(slip.DDate, slip.JunNo, slip.UserID)) {
            books::JournalPayment payment;
            payment.number = slip.JunNo + sent;
            payment.slip = slip;
            if (!books::notePayment(payment)) return std::nullopt;
        }
        return books::approvePayment(books::lastPayment(slip.DDate, slip.JunNo, slip.UserID)->number,
                                     transaction);
    }

    test::TestDevice device_;
};

TEST_F(Collections, FillsTheColumnsOfItsRow) {
    addSalesSlip();
    ASSERT_TRUE(books::saveCollection(slip(60000, 20000, 15000, 4000)));
    EXPECT_EQ(device_.rows(u"SELECT * FROM MTMOK"_s),
              (QList<QStringList>{{kDate,      u"매출"_s,   u"0001"_s,   u"가나상회"_s, kNumber,   u"14:30"_s,
                                   kUser,      u"110000"_s, u"100000"_s, u"10000"_s,    u"3000"_s, u"2000"_s,
                                   u"5000"_s,  u"80000"_s,  u"20000"_s,  u"60000"_s,    u"4000"_s, u"20000"_s,
                                   u"15000"_s, u"700"_s,    u""_s,       u""_s}}));
    // The entry's own INSERT names neither of the approval's columns.
    EXPECT_EQ(device_.value(u"SELECT count(*) FROM MTMOK WHERE MSGSENDTIME IS NULL AND BANKTRANNO IS NULL"_s),
              u"1"_s);
    const auto loaded = books::loadCollection(kDate, kNumber, kUser);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->amounts().total, Won(115000));
    EXPECT_EQ(loaded->amounts().unpaid, Won(20000));
    CollectionSlip again = *loaded;
    again.setAmounts(loaded->amounts(), loaded->YMoney);
    EXPECT_TRUE(again == *loaded);
    EXPECT_FALSE(books::loadCollection(kDate, kNumber, u"B"_s));
    again.GName = u"O'Hara"_s;
    EXPECT_FALSE(books::saveCollection(again));
    EXPECT_TRUE(books::loadCollection(kDate, kNumber, kUser) == loaded) << "as it was";
    EXPECT_EQ(receivable(), u"366000"_s);
}

TEST_F(Collections, KeepTheirApprovalWhenSavedAgain) {
    addSalesSlip();
    addSalesSlip(u"B");
    ASSERT_TRUE(books::saveCollection(slip(115000, 0)));
    const CollectionSlip saved = *books::loadCollection(kDate, kNumber, kUser);
    EXPECT_FALSE(approve(saved, u"T'1", u"143000"_s));

    EXPECT_TRUE(approve(saved, u"T1", u"143000"_s));
    EXPECT_EQ(printStates(), u"A결제,B미발행"_s);
    CollectionSlip changed = slip(100000, 15000);
    changed.BANKTRANNO = u"forged"_s;
    ASSERT_TRUE(books::saveCollection(changed));
    EXPECT_EQ(device_.rows(u"SELECT CardMoney, MSGSENDTIME, BANKTRANNO FROM MTMOK"_s),
              (QList<QStringList>{{u"100000"_s, u"143000"_s, u"T1"_s}}));

    const auto found = books::findByTransactionNumber(u"T1");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->JunNo + found->UserID + platform::formatWon(found->CardMoney), u"5001A100000"_s);
    EXPECT_FALSE(books::findByTransactionNumber(u"T2"));
    // One row holds one approval: another comes in beside it.
    const auto second = approve(saved, u"T2", u"150000"_s);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->JunNo + second->Gubun, u"7001입금"_s);
    EXPECT_TRUE(books::findByTransactionNumber(u"T1") && books::findByTransactionNumber(u"T2"));

    // The sale was deleted, the payment stayed, and its number is another customer's now.
    device_.insert(u"YTM", {{u"DDate", kDate}, {u"GCode", u"0001"}, {u"JunNo", kNumber}, {u"UserID", kUser}});
    CollectionSlip others = slip(1, 0);
    others.GCode = u"0002"_s;
    const QString before = receivable();
    ASSERT_TRUE(books::saveCollection(others));
    EXPECT_EQ(receivable(), before);
    EXPECT_FALSE(books::loadCollection(kDate, kNumber, kUser)->isApproved()) << "it is not his payment";
    EXPECT_EQ(books::findByTransactionNumber(u"T1")->JunNo, u"4001"_s);
    EXPECT_EQ(device_.value(u"SELECT JunNo FROM YTM"_s), u"4001"_s);
    EXPECT_EQ(device_.value(u"SELECT group_concat(JunNo) FROM PAYJOURNAL"_s), u"4001,7001"_s);
}

TEST_F(Collections, GiveNoNumberToTwoPayments) {
    CollectionSlip simple = slip(115000, 0);
    simple.JunNo = u"7001"_s;
    simple.Gubun = books::kSimplePaymentSlip.toString();
    EXPECT_EQ(approve(simple, u"T1", u"140000"_s)->JunNo, u"7001"_s);
    EXPECT_EQ(approve(simple, u"T2", u"141000"_s)->JunNo, u"7002"_s);
    // Two of one number, as an older terminal has left them, cannot become one row.
    device_.execute(u"UPDATE MTMOK SET JunNo = '7001'"_s);
    EXPECT_FALSE(books::saveCollection(simple));
    EXPECT_TRUE(books::findByTransactionNumber(u"T1") && books::findByTransactionNumber(u"T2"));

    // Under the number another customer owes by now.
    ASSERT_TRUE(books::saveCollection(slip(0, 0)));
    device_.execute(u"UPDATE MTMOK SET GCode = '0002' WHERE JunNo = '5001'"_s);
    EXPECT_EQ(approve(slip(115000, 0), u"T3", u"150000"_s)->JunNo, u"7002"_s);
    EXPECT_EQ(books::loadCollection(kDate, kNumber, kUser)->GCode, u"0002"_s);
}

}  // namespace
