#include "books/PaymentJournal.h"

#include <algorithm>
#include <array>

#include "books/Approvals.h"
#include "books/Charge.h"
#include "books/ContainerBalance.h"
#include "books/OpenPayments.h"
#include "db/Health.h"
#include "db/Query.h"
#include "db/Transaction.h"
#include "platform/Clock.h"

namespace books {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

constexpr db::Statement<u"SELECT * FROM PAYJOURNAL WHERE Number = '%s'"> kOne;
constexpr db::Statement<u"SELECT * FROM PAYJOURNAL WHERE State = 'sent' OR State = 'unknown' ORDER BY rowid">
    kUnsettled;
constexpr db::Statement<
    u"SELECT * FROM PAYJOURNAL WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND State <> 'prepared' "
    u"ORDER BY rowid DESC">
    kOfSlip;

constexpr QStringView kCard = u"card";
constexpr QStringView kCash = u"cash";
constexpr int kOwnColumns = 5;  ///< Those in front of the slip's.

constexpr struct StateName {
    PaymentState state;
    QStringView name;
} kStates[] = {
    {PaymentState::Sent, u"sent"},         {PaymentState::Approved, u"approved"},
    {PaymentState::Refused, u"refused"},   {PaymentState::Unknown, u"unknown"},
    {PaymentState::Released, u"released"}, {PaymentState::Prepared, u"prepared"},
};
static_assert(std::size(kStates) == std::size_t(PaymentState::Prepared) + 1);

JournalPayment paymentOf(db::CVORecordset& row) {
    JournalPayment payment;
    payment.number = row.GetFieldString(0);
    const QString state = row.GetFieldString(1);
    // A state that is none leaves it open whether the customer was charged.
    const auto* const found = std::ranges::find(kStates, QStringView(state), &StateName::name);
    payment.state = found == std::end(kStates) ? PaymentState::Unknown : found->state;
    payment.isCard = row.GetFieldString(2) != kCash;
    payment.charged = platform::parseWon(row.GetFieldString(3));
    payment.slip = readCollection(row, kOwnColumns);
    int column = kOwnColumns + kCollectionColumns;
    for (auto* amount : {&payment.saleTotal, &payment.containerWorth}) {
        const QString text = column < row.m_nFieldCount ? row.GetFieldString(column) : QString();
        if (!text.isEmpty()) *amount = platform::parseWon(text);
        ++column;
    }
    return payment;
}

std::optional<QList<JournalPayment>> payments(const db::Sql& select) {
    QList<JournalPayment> found;
    const int rows = db::forEachRow(select, [&](db::CVORecordset& row) { found << paymentOf(row); });
    return rows < 0 ? std::nullopt : std::optional(found);
}

/// The first row.
std::optional<JournalPayment> payment(const db::Sql& select) {
    const auto found = payments(select).value_or(QList<JournalPayment>());
    return found.isEmpty() ? std::nullopt : std::optional(found.first());
}

/// True for an approval that stands on no slip.
bool hasLostSlip(const JournalPayment& payment) {
    return payment.state == PaymentState::Approved && payment.slip.isApproved() &&
           !findByTransactionNumber(payment.slip.BANKTRANNO);
}

/// The newest payment of the day that `isSought` is true of.
template <typename Condition>
std::optional<JournalPayment> newestOfDay(QStringView date, const Condition& isSought) {
    const auto sent = journalPayments(date).value_or(QList<JournalPayment>());
    const auto found = std::find_if(sent.rbegin(), sent.rend(), isSought);
    return found == sent.rend() ? std::nullopt : std::optional(*found);
}

QString now() {
    return platform::clock::now().toString(u"yyyy-MM-dd HH:mm:ss"_s);
}

/// Puts the approval on the payment's slip and notes it, and keeps both.
std::optional<CollectionSlip> approve(db::Transaction& transaction, const JournalPayment& payment,
                                      QStringView transactionNumber) {
    static constexpr db::Statement<
        u"UPDATE PAYJOURNAL SET State = 'approved', SettledAt = '%s', JunNo = '%s', BANKTRANNO = '%s' "
        u"WHERE Number = '%s'">
        kApprove;
    CollectionSlip approved = payment.slip;
    approved.BANKTRANNO = transactionNumber.toString();
    const CollectionSlip& charged = payment.slip;
    const auto slip = putApproved(transaction, approved, {payment.saleTotal, payment.containerWorth});
    const bool isKept = slip && forgetPrepared(transaction, charged.DDate, charged.JunNo, charged.UserID) &&
                        transaction.run(kApprove(now(), slip->JunNo, transactionNumber, payment.number)) &&
                        transaction.commit();
    return isKept ? slip : std::nullopt;
}

}  // namespace

QStringView stateName(PaymentState state) {
    return std::ranges::find(kStates, state, &StateName::state)->name;
}

CollectionSlip simplePaymentSlip(const SlipIdentity& slip, const QString& gName,
                                 const SettlementAmounts& amounts, const QString& sentTime) {
    CollectionSlip simple;
    simple.Gubun = kSimplePaymentSlip.toString();
    simple.DTime = timeOfSaving();
    simple.DDate = slip.date;
    simple.GCode = slip.gCode;
    simple.GName = gName;
    simple.JunNo = slip.junNo;
    simple.UserID = slip.userId;
    simple.setAmounts(amounts, {});
    simple.MSGSENDTIME = sentTime;
    return simple;
}

JournalPayment paymentToSend(const SlipIdentity& slip, const QString& gName, const SettlementAmounts& amounts,
                             int cardPaymentFlag, bool isVisit, const QString& sentTime) {
    JournalPayment payment;
    payment.isCard = chargeKind(amounts, cardPaymentFlag) == ChargeKind::Card;
    payment.charged = amountToCharge(amounts, cardPaymentFlag);
    const auto saved = isVisit ? loadCollection(slip.date, slip.junNo, slip.userId) : std::nullopt;
    payment.slip = saved.value_or(simplePaymentSlip(slip, gName, amounts, sentTime));
    payment.slip.MSGSENDTIME = sentTime;
    payment.slip.BANKTRANNO.clear();
    return payment;
}

bool notePayment(const JournalPayment& payment) {
    // Apart from the INSERT, because a database of an older terminal has no such columns.
    static constexpr db::Statement<u"UPDATE PAYJOURNAL SET SaleTotal = '%s' WHERE Number = '%s'"> kNoteSale;
    static constexpr db::Statement<u"UPDATE PAYJOURNAL SET ContainerWorth = '%s' WHERE Number = '%s'">
        kNoteContainers;
    db::Transaction transaction;
    const auto open = payments(kUnsettled());
    if (!open || findInTheWay(*open, payment)) return false;
    JournalPayment sent = payment;
    sent.state = PaymentState::Sent;
    if (!addPayment(transaction, sent)) return false;
    const CollectionSlip& slip = sent.slip;
    const auto sale = savedSale(slip.DDate, slip.JunNo, slip.UserID, slip.GCode);
    const Won worth = savedRecovery(slip.DDate, slip.JunNo, slip.UserID, slip.GCode).value_or(Won());
    const bool isNoted =
        (!sale || transaction.run(kNoteSale(platform::formatWon(sale->total()), sent.number))) &&
        transaction.run(kNoteContainers(platform::formatWon(worth), sent.number));
    return (isNoted || (transaction.isAlive() && db::needsUpgrade())) && transaction.commit();
}

bool addPayment(db::Transaction& transaction, const JournalPayment& payment) {
    static constexpr db::Statement<
        u"INSERT INTO PAYJOURNAL (Number,State,Kind,Charged,SettledAt,DDate,Gubun,GCode,GName,JunNo,DTime,"
        u"UserID,MMoney,PMoney,BMoney,YMoney,GMoney,YGMoney,InMoney,WonMoney,CardMoney,MisuInMoney,"
        u"UnderMoney,YDMoney,GDMoney,MSGSENDTIME,BANKTRANNO) VALUES ('%s','%s','%s','%s','%s','%s','%s',"
        u"'%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s',"
        u"'%s')">
        kInsert;
    const auto columns = columnTexts(payment.slip);
    const QString charged = platform::formatWon(payment.charged);
    std::array<QStringView, decltype(kInsert)::kValues> values{payment.number, stateName(payment.state),
                                                               payment.isCard ? kCard : kCash, charged, u""};
    static_assert(kOwnColumns + std::tuple_size_v<decltype(columns)> == decltype(kInsert)::kValues);
    std::ranges::copy(columns, values.begin() + kOwnColumns);
    return transaction.run(kInsert(values));
}

bool notePrepared(db::Transaction& transaction, const CollectionSlip& slip,
                  const QList<CollectionSlip>& replaced) {
    // The slip that it replaces may be on the way to the card itself: the one from before that comes back.
    if (preparedPayment(slip.DDate, slip.JunNo, slip.UserID)) return true;
    JournalPayment prepared;
    prepared.state = PaymentState::Prepared;
    prepared.number = slip.DDate + slip.JunNo + slip.UserID;
    if (replaced.isEmpty()) {
        prepared.slip.DDate = slip.DDate;
        prepared.slip.JunNo = slip.JunNo;
        prepared.slip.UserID = slip.UserID;
        prepared.slip.GCode = slip.GCode;
        prepared.slip.GName = slip.GName;
    } else {
        prepared.slip = replaced.first();
    }
    return addPayment(transaction, prepared) || (transaction.isAlive() && db::needsUpgrade());
}

bool forgetPrepared(db::Transaction& transaction, QStringView date, QStringView junNo, QStringView userId) {
    // An empty user leaves the condition on him out.
    static constexpr db::Statement<
        u"DELETE FROM PAYJOURNAL WHERE State = 'prepared' AND DDate = '%s' AND JunNo = '%s' AND ('%s' = '' "
        u"OR UserID = '%s')">
        kForgetPrepared;
    return transaction.run(kForgetPrepared(date, junNo, userId, userId)) ||
           (transaction.isAlive() && db::needsUpgrade());
}

QList<JournalPayment> preparedPayments() {
    static constexpr db::Statement<u"SELECT * FROM PAYJOURNAL WHERE State = 'prepared' ORDER BY rowid">
        kPrepared;
    return payments(kPrepared()).value_or(QList<JournalPayment>());
}

std::optional<JournalPayment> preparedPayment(QStringView date, QStringView junNo, QStringView userId) {
    const QList<JournalPayment> prepared = preparedPayments();
    const auto found = std::ranges::find_if(prepared, [&](const JournalPayment& each) {
        return each.slip.DDate == date && each.slip.JunNo == junNo && each.slip.UserID == userId;
    });
    return found == prepared.end() ? std::nullopt : std::optional(*found);
}

bool settlePayment(QStringView number, PaymentState state) {
    static constexpr db::Statement<
        u"UPDATE PAYJOURNAL SET State = '%s', SettledAt = '%s' WHERE Number = '%s'">
        kSettle;
    db::Transaction transaction;
    const auto before = payment(kOne(number));
    if (!before || !before->isUnsettled()) return false;
    return transaction.run(kSettle(stateName(state), now(), number)) && transaction.commit();
}

bool reopenPayment(QStringView number) {
    static constexpr db::Statement<
        u"UPDATE PAYJOURNAL SET State = 'unknown', SettledAt = '%s', BANKTRANNO = '' WHERE Number = '%s'">
        kReopen;
    db::Transaction transaction;
    const auto before = payment(kOne(number));
    if (!before || before->isUnsettled()) return false;
    return takeApprovalOff(transaction, before->slip.BANKTRANNO) && transaction.run(kReopen(now(), number)) &&
           transaction.commit();
}

std::optional<CollectionSlip> approvePayment(QStringView number, QStringView transactionNumber) {
    if (transactionNumber.isEmpty()) return std::nullopt;
    db::Transaction transaction;
    const auto before = payment(kOne(number));
    if (!before || !before->isUnsettled()) return std::nullopt;
    return approve(transaction, *before, transactionNumber);
}

std::optional<JournalPayment> approvalWithoutSlip(const SlipIdentity& slip) {
    const auto isLost = [&](const JournalPayment& each) {
        return each.slip.GCode == slip.gCode && hasLostSlip(each);
    };
    const auto own = payments(kOfSlip(slip.date, slip.junNo, slip.userId)).value_or(QList<JournalPayment>());
    if (const auto found = std::ranges::find_if(own, isLost); found != own.end()) return *found;
    // A sale that is deleted and written again gets another number.
    return newestOfDay(slip.date, [&](const JournalPayment& each) {
        return !each.slip.isSimplePayment() && !slip.gCode.isEmpty() && isLost(each);
    });
}

std::optional<JournalPayment> deletedPayment(const SlipIdentity& slip) {
    const auto isHis = [&](const JournalPayment& each) {
        // One who is not registered may be anybody, but for the number that is given to him again.
        return each.slip.isSimplePayment() && each.slip.UserID == slip.userId &&
               each.slip.GCode == slip.gCode &&
               (slip.gCode != kUnregisteredCustomer || each.slip.JunNo == slip.junNo) && hasLostSlip(each);
    };
    const auto found = newestOfDay(slip.date, isHis);
    return found ? found : approvalWithoutSlip(slip);
}

std::optional<CollectionSlip> putApprovalBack(QStringView number) {
    db::Transaction transaction;
    const auto before = payment(kOne(number));
    if (!before || before->state != PaymentState::Approved ||
        findByTransactionNumber(before->slip.BANKTRANNO)) {
        return std::nullopt;
    }
    return approve(transaction, *before, before->slip.BANKTRANNO);
}

void closeStoppedPayments() {
    static constexpr db::Statement<
        u"UPDATE PAYJOURNAL SET State = 'unknown', SettledAt = '%s' WHERE State = 'sent'">
        kCloseStopped;
    db::execute(kCloseStopped(now()));
}

QList<JournalPayment> unsettledPayments() {
    return payments(kUnsettled()).value_or(QList<JournalPayment>());
}

bool hasUnsettledPayments() {
    return db::hasRow(kUnsettled());
}

std::optional<JournalPayment> lastPayment(QStringView date, QStringView junNo, QStringView userId) {
    return payment(kOfSlip(date, junNo, userId));
}

std::optional<JournalPayment> unsettledPayment(QStringView date, QStringView junNo, QStringView userId) {
    const QList<JournalPayment> open = unsettledPayments();
    const auto found = std::ranges::find_if(open, [&](const JournalPayment& each) {
        return each.slip.DDate == date && each.slip.JunNo == junNo &&
               (userId.isEmpty() || each.slip.UserID == userId);
    });
    return found == open.end() ? std::nullopt : std::optional(*found);
}

bool hasUnsettledPayment(QStringView date, QStringView junNo, QStringView userId) {
    return unsettledPayment(date, junNo, userId).has_value();
}

std::optional<JournalPayment> findPayment(QStringView number) {
    return payment(kOne(number));
}

std::optional<QList<JournalPayment>> journalPayments(QStringView date) {
    static constexpr db::Statement<u"SELECT * FROM PAYJOURNAL WHERE State <> 'prepared' ORDER BY rowid"> kAll;
    static constexpr db::Statement<
        u"SELECT * FROM PAYJOURNAL WHERE DDate = '%s' AND State <> 'prepared' ORDER BY rowid">
        kOfDay;
    return payments(date.isEmpty() ? kAll() : kOfDay(date));
}

bool isLastPayment(const JournalPayment& payment, QStringView transactionNumber) {
    static constexpr db::Statement<
        u"SELECT Number FROM PAYJOURNAL WHERE State <> 'prepared' ORDER BY rowid DESC">
        kNewest;
    static constexpr db::Statement<u"SELECT Number FROM PAYJOURNAL WHERE BANKTRANNO = '%s'"> kByTransaction;
    const auto newest = db::firstRow(kNewest());
    return newest && newest->value(0) == payment.number && !db::hasRow(kByTransaction(transactionNumber));
}

}  // namespace books
