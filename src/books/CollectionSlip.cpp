#include "books/CollectionSlip.h"

#include <algorithm>
#include <array>
#include <utility>

#include "books/Deletions.h"
#include "books/OpenPayments.h"
#include "books/PrintLog.h"
#include "books/ReusedNumber.h"
#include "books/SlipNumbers.h"
#include "db/Query.h"
#include "platform/Clock.h"

namespace books {

using namespace Qt::Literals::StringLiterals;
using platform::formatWon;
using platform::parseWon;
using platform::Won;

namespace {

constexpr db::Statement<u"DELETE MTMOK WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' "> kDeleteOwn;
constexpr db::Statement<u"DELETE MTMOK WHERE JunNo= '%s' AND DDate = '%s' "> kDelete;
constexpr db::Statement<
    u"INSERT INTO MTMOK (DDate,Gubun,GCode,GName,JunNo,DTime,UserID,MMoney,PMoney,BMoney,YMoney,GMoney,"
    u"YGMoney,InMoney,WonMoney,CardMoney,MisuInMoney,UnderMoney,YDMoney,GDMoney) VALUES "
    u"('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s')">
    kInsert;
constexpr db::Statement<
    u"INSERT INTO MTMOK (DDate,Gubun,GCode,GName,JunNo,DTime,UserID,MMoney,PMoney,BMoney,YMoney,GMoney,"
    u"YGMoney,InMoney,WonMoney,CardMoney,MisuInMoney,UnderMoney,YDMoney,GDMoney,MSGSENDTIME,BANKTRANNO) "
    u"VALUES ('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s',"
    u"'%s','%s','%s','%s')">
    kInsertApproved;
constexpr db::Statement<
    u"UPDATE MTMOK SET MSGSENDTIME = '%s', BANKTRANNO = '%s' "
    u"WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s'">
    kApprove;
constexpr db::Statement<
    u"UPDATE MTM SET WorkGubun = '결제' WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s'">
    kMarkPaid;
constexpr db::Statement<u"UPDATE MTMOK SET MSGSENDTIME = '', BANKTRANNO = '' WHERE BANKTRANNO = '%s'">
    kTakeApprovalOff;
constexpr db::Statement<u"DELETE MTMOK WHERE BANKTRANNO = '%s' AND Gubun = '단순결제'"> kDeleteSimple;
constexpr db::Statement<
    u"UPDATE MTM SET WorkGubun = '미발행' WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND "
    u"WorkGubun = '결제'">
    kMarkUnpaid;
constexpr db::Statement<u"SELECT * FROM MTMOK WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s'"> kOwn;
constexpr db::Statement<u"SELECT * FROM MTMOK WHERE DDate = '%s' AND JunNo = '%s'"> kAnyones;
// Those that stand beside their container slip. An empty user leaves the condition on him out.
constexpr db::Statement<
    u"SELECT * FROM MTMOK WHERE DDate = '%s' AND JunNo = '%s' AND ('%s' = '' OR UserID = '%s') AND Gubun <> "
    u"'단순결제' AND EXISTS (SELECT PCode FROM YTM WHERE YTM.DDate = MTMOK.DDate AND YTM.JunNo = MTMOK.JunNo "
    u"AND YTM.UserID = MTMOK.UserID AND YTM.GCode = MTMOK.GCode)">
    kOfContainers;
constexpr db::Statement<
    u"SELECT DDate,Gubun,GCode,GName, JunNo,DTime ,UserID,MMoney,PMoney,BMoney,YMoney,GMoney, YGMoney, "
    u"InMoney,WonMoney,CardMoney,MisuInMoney,UnderMoney,YDMoney, GDMoney FROM MTMOK WHERE BANKTRANNO= '%s' "
    u"ORDER BY JunNo DESC">
    kByTransaction;
constexpr db::Statement<
    u"SELECT JunNo, GName, GCode FROM MTMOK WHERE USERID= '%s' and DDate = '%s' ORDER BY JunNo DESC">
    kOfDay;
// An empty user leaves the condition on him out.
constexpr db::Statement<
    u"SELECT * FROM MTMOK WHERE DDate = '%s' AND ('%s' = '' OR UserID = '%s') ORDER BY JunNo, UserID">
    kAllOfDay;
constexpr db::Statement<
    u"SELECT * FROM MTMOK WHERE MSGSENDTIME >= '%s' AND MSGSENDTIME <= '%s' AND BANKTRANNO <> '' "
    u"ORDER BY BANKTRANNO, MSGSENDTIME">
    kApproved;
constexpr db::Statement<
    u"SELECT JunNo FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' ORDER BY PCode DESC">
    kSalesSlip;
constexpr db::Statement<
    u"SELECT GCode FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode <> '%s'">
    kOthersSalesSlip;
constexpr db::Statement<
    u"SELECT GCode FROM MTM WHERE DDate = '%s' AND JunNo = '%s' AND UserID = '%s' AND GCode = '%s'">
    kOwnSalesSlip;
constexpr db::Statement<u"SELECT CJMoney FROM GARAE WHERE GCode= '%s'"> kReceivable;
constexpr db::Statement<u"UPDATE GARAE SET CJMoney = '%s' WHERE GCode = '%s'"> kMoveReceivable;

constexpr int kTextColumns = 7;  ///< Those in front of the amounts.

/// The table's columns in its own order.
constexpr std::array kTexts{&CollectionSlip::DDate, &CollectionSlip::Gubun, &CollectionSlip::GCode,
                            &CollectionSlip::GName, &CollectionSlip::JunNo, &CollectionSlip::DTime,
                            &CollectionSlip::UserID};
constexpr std::array kAmounts{
    &CollectionSlip::MMoney,      &CollectionSlip::PMoney,     &CollectionSlip::BMoney,
    &CollectionSlip::YMoney,      &CollectionSlip::GMoney,     &CollectionSlip::YGMoney,
    &CollectionSlip::InMoney,     &CollectionSlip::WonMoney,   &CollectionSlip::CardMoney,
    &CollectionSlip::MisuInMoney, &CollectionSlip::UnderMoney, &CollectionSlip::YDMoney,
    &CollectionSlip::GDMoney};
constexpr int kColumns = kTextColumns + int(kAmounts.size());  ///< Without the approval's two.
static_assert(kTexts.size() == kTextColumns && decltype(kInsert)::kValues == kColumns);

CollectionSlip slipOf(db::CVORecordset& row, int column = 0) {
    CollectionSlip slip;
    for (const auto text : kTexts) slip.*text = row.GetFieldString(column++);
    for (const auto amount : kAmounts) slip.*amount = parseWon(row.GetFieldString(column++));
    return slip;
}

/// The rows of a SELECT of the whole table; nothing when they broke off.
std::optional<QList<CollectionSlip>> allRows(const db::Sql& select) {
    QList<CollectionSlip> slips;
    const int count = db::forEachRow(select, [&](db::CVORecordset& row) { slips << readCollection(row, 0); });
    return count < 0 ? std::nullopt : std::optional(slips);
}

/// The same; no rows when they broke off.
QList<CollectionSlip> wholeRows(const db::Sql& select) {
    return allRows(select).value_or(QList<CollectionSlip>());
}

/// The texts of a row, and a view on them for the INSERT of so many columns.
struct RowTexts {
    std::array<QString, kColumns + 2> texts;

    explicit RowTexts(const CollectionSlip& slip) : texts(columnTexts(slip)) {}

    template <std::size_t Columns>
    std::array<QStringView, Columns> values() const {
        std::array<QStringView, Columns> views;
        std::copy_n(texts.begin(), Columns, views.begin());
        return views;
    }
};

/// Adds to the customer's receivable; one who is not there has none. False when the balance did not take it.
bool moveReceivable(db::Transaction& transaction, const QString& gCode, Won by) {
    if (by.isZero() || !db::hasRow(kReceivable(gCode))) return true;
    const Won moved = receivable(gCode) + by;
    transaction.connection().Execute(kMoveReceivable(formatWon(moved), gCode));
    return receivable(gCode) == moved;
}

bool takeReceivablesBack(db::Transaction& transaction, const QList<CollectionSlip>& slips) {
    for (const CollectionSlip& slip : slips) {
        if (!moveReceivable(transaction, slip.GCode, -slip.receivableEffect())) return false;
    }
    return true;
}

/// True when the rows on disk say what `slip` says, but for the time of saving.
bool isSameSlip(const QList<CollectionSlip>& rows, CollectionSlip slip) {
    if (rows.size() != 1) return false;
    slip.DTime = rows.first().DTime;
    return rows.first() == slip;
}

/// True when `row` is what `slip` was before its approval, but for the time of saving.
bool isUnapproved(CollectionSlip row, const CollectionSlip& slip) {
    row.DTime = slip.DTime;
    row.MSGSENDTIME = slip.MSGSENDTIME;
    row.BANKTRANNO = slip.BANKTRANNO;
    return row == slip;
}

QString timeOfSaving() {
    return platform::clock::now().toString(u"HH:mm"_s);
}

/// Puts the slip in the place of the rows of its number, with the approval that it carries, and moves the
/// receivables. After false the transaction must not be committed.
bool replaceRows(db::Transaction& transaction, const QList<CollectionSlip>& replaced,
                 const CollectionSlip& slip) {
    transaction.connection().Execute(kDeleteOwn(slip.DDate, slip.JunNo, slip.UserID));
    transaction.connection().Execute(kInsert(RowTexts(slip).values<kColumns>()));
    if (slip.isApproved()) {
        transaction.connection().Execute(
            kApprove(slip.MSGSENDTIME, slip.BANKTRANNO, slip.DDate, slip.JunNo, slip.UserID));
    }
    // A statement that failed was skipped; a payment is not kept by halves.
    if (wholeRows(kOwn(slip.DDate, slip.JunNo, slip.UserID)) != QList<CollectionSlip>{slip}) return false;
    // A slip that is saved as it was need not be printed again.
    if (!isSameSlip(replaced, slip) &&
        !forgetPrints(transaction, Paper::CollectionSlip, slip.DDate, slip.JunNo, slip.UserID)) {
        return false;
    }
    return takeReceivablesBack(transaction, replaced) &&
           moveReceivable(transaction, slip.GCode, slip.receivableEffect());
}

/// Deletes the rows of a number and takes their receivables back. Result as for replaceRows.
bool deleteRows(db::Transaction& transaction, QStringView date, QStringView junNo, QStringView userId) {
    const QList<CollectionSlip> removed = wholeRows(kOwn(date, junNo, userId));
    transaction.connection().Execute(kDeleteOwn(date, junNo, userId));
    return !db::hasRow(kOwn(date, junNo, userId)) &&
           forgetPrints(transaction, Paper::CollectionSlip, date, junNo, userId) &&
           takeReceivablesBack(transaction, removed);
}

bool takeOut(QStringView date, QStringView junNo, QStringView userId) {
    db::Transaction transaction;
    return deleteRows(transaction, date, junNo, userId) && transaction.commit();
}

}  // namespace

std::array<QString, kCollectionColumns> columnTexts(const CollectionSlip& slip) {
    static_assert(kCollectionColumns == kColumns + 2);
    std::array<QString, kCollectionColumns> texts;
    std::size_t column = 0;
    for (const auto text : kTexts) texts[column++] = slip.*text;
    for (const auto amount : kAmounts) texts[column++] = formatWon(slip.*amount);
    texts[column++] = slip.MSGSENDTIME;
    texts[column] = slip.BANKTRANNO;
    return texts;
}

CollectionSlip readCollection(db::CVORecordset& row, int firstColumn) {
    CollectionSlip slip = slipOf(row, firstColumn);
    slip.MSGSENDTIME = row.GetFieldString(firstColumn + kColumns);
    slip.BANKTRANNO = row.GetFieldString(firstColumn + kColumns + 1);
    return slip;
}

void CollectionSlip::setAmounts(const SettlementAmounts& amounts, Won crateDeposit) {
    MMoney = amounts.sales;
    PMoney = amounts.supply;
    BMoney = amounts.vat;
    YMoney = crateDeposit;
    GMoney = amounts.deposit - crateDeposit;
    YGMoney = amounts.deposit;
    InMoney = amounts.cash + amounts.card;
    WonMoney = amounts.cash;
    CardMoney = amounts.card;
    MisuInMoney = amounts.earlierReceivable;
    UnderMoney = amounts.unpaid;
    YDMoney = amounts.containerRecovery;
    GDMoney = amounts.nonLiquor;
}

SettlementAmounts CollectionSlip::amounts() const {
    return {.sales = MMoney,
            .supply = PMoney,
            .vat = BMoney,
            .nonLiquor = GDMoney,
            .deposit = YGMoney,
            .total = isSimplePayment() ? MMoney + GDMoney - YDMoney : MMoney + YGMoney,
            .containerRecovery = YDMoney,
            .card = CardMoney,
            .cash = WonMoney,
            .unpaid = UnderMoney,
            .earlierReceivable = MisuInMoney,
            .previousReceivable = {}};
}

Won CollectionSlip::receivableEffect() const {
    return isSimplePayment() ? Won() : MMoney + YGMoney - InMoney - MisuInMoney - YDMoney;
}

Won CollectionSlip::cashTaken() const {
    return isExcessBooked() ? Won() : WonMoney + MisuInMoney;
}

bool CollectionSlip::isExcessBooked() const {
    // The settling buttons book a recovery above the total as paid against the earlier receivable, and
    // nothing else. The keyed recovery books it with cash below 0, which makes up for it. An earlier
    // receivable that is keyed is money.
    const Won excess = YDMoney - MMoney - YGMoney;
    const bool isByButton = WonMoney.isZero() && CardMoney.isZero() && UnderMoney.isZero();
    return !isSimplePayment() && excess > Won() && MisuInMoney == excess &&
           (isByButton || WonMoney == -excess);
}

void CollectionSlip::takeRecoveryBack() {
    if (isExcessBooked()) {
        // By button the cash is 0 already.
        WonMoney = MisuInMoney = Won();
        InMoney = CardMoney;
    }
    YDMoney = Won();
    const Won total = MMoney + YGMoney;
    UnderMoney = total < Won(1) ? Won() : total - InMoney;
}

bool saveCollection(const CollectionSlip& entered, std::optional<CollectionSlip>* before) {
    db::Transaction transaction;
    if (!freeNumber(transaction, entered.DDate, entered.JunNo, entered.UserID, entered.GCode)) return false;
    const QList<CollectionSlip> replaced = wholeRows(kOwn(entered.DDate, entered.JunNo, entered.UserID));
    if (before) *before = replaced.isEmpty() ? std::nullopt : std::optional(replaced.first());
    CollectionSlip slip = entered;
    slip.Gubun =
        (db::hasRow(kSalesSlip(slip.DDate, slip.JunNo, slip.UserID)) ? kCollectionOfSale : kCollectionAlone)
            .toString();
    slip.DTime = timeOfSaving();
    slip.MSGSENDTIME.clear();
    slip.BANKTRANNO.clear();
    for (const CollectionSlip& row : replaced) {
        if (row.isSimplePayment()) slip.Gubun = row.Gubun;
        if (!row.isApproved()) continue;
        // One row has no room for two approvals.
        if (slip.isApproved()) return false;
        slip.MSGSENDTIME = row.MSGSENDTIME;
        slip.BANKTRANNO = row.BANKTRANNO;
    }
    return replaceRows(transaction, replaced, slip) && transaction.commit();
}

std::optional<Won> takeRecoveriesBack(db::Transaction& transaction, QStringView date, QStringView junNo,
                                      QStringView userId) {
    const auto slips = allRows(kOfContainers(date, junNo, userId, userId));
    if (!slips) return std::nullopt;
    Won takenBack;
    for (const CollectionSlip& before : *slips) {
        if (before.YDMoney.isZero()) continue;
        takenBack += before.YDMoney;
        CollectionSlip slip = before;
        slip.takeRecoveryBack();
        const auto amounts = slip.amounts();
        const bool isLeft = slip.isApproved() || !amounts.total.isZero() || !amounts.card.isZero() ||
                            !amounts.cash.isZero() || !amounts.earlierReceivable.isZero() ||
                            !amounts.nonLiquor.isZero();
        if (isLeft ? !replaceRows(transaction, {before}, slip)
                   : !deleteRows(transaction, date, junNo, before.UserID)) {
            return std::nullopt;
        }
    }
    return takenBack;
}

std::optional<CollectionSlip>& replacedCollection() {
    static std::optional<CollectionSlip> replaced;
    return replaced;
}

bool takeBackCollection(QStringView date, QStringView junNo, QStringView userId) {
    const std::optional<CollectionSlip>& before = replacedCollection();
    const bool isIts = before && before->DDate == date && before->JunNo == junNo && before->UserID == userId;
    // An entry that is given up was never a slip that somebody deleted.
    if (isIts ? !saveCollection(*before) : !takeOut(date, junNo, userId)) return false;
    replacedCollection().reset();
    return true;
}

bool removeCollection(QStringView date, QStringView junNo, QStringView userId) {
    db::Transaction transaction;
    return noteDeletion(transaction, Paper::CollectionSlip, date, junNo, userId, userId) &&
           deleteRows(transaction, date, junNo, userId) && transaction.commit();
}

bool removeCollections(QStringView date, QStringView junNo, QStringView deletedBy) {
    db::Transaction transaction;
    return removeCollections(transaction, date, junNo, deletedBy) && transaction.commit();
}

bool removeCollections(db::Transaction& transaction, QStringView date, QStringView junNo,
                       QStringView deletedBy) {
    if (!noteDeletion(transaction, Paper::CollectionSlip, date, junNo, {}, deletedBy)) return false;
    const QList<CollectionSlip> removed = wholeRows(kAnyones(date, junNo));
    transaction.connection().Execute(kDelete(junNo, date));
    return !db::hasRow(kAnyones(date, junNo)) &&
           forgetPrints(transaction, Paper::CollectionSlip, date, junNo) &&
           takeReceivablesBack(transaction, removed);
}

QList<CollectionSlip> approvedUnder(QStringView date, QStringView junNo) {
    QList<CollectionSlip> slips = wholeRows(kAnyones(date, junNo));
    slips.removeIf([](const CollectionSlip& slip) { return !slip.isApproved(); });
    return slips;
}

std::optional<CollectionSlip> loadCollection(QStringView date, QStringView junNo, QStringView userId) {
    const QList<CollectionSlip> slips = wholeRows(kOwn(date, junNo, userId));
    return slips.isEmpty() ? std::nullopt : std::optional(slips.first());
}

std::optional<CollectionSlip> findByTransactionNumber(QStringView transactionNumber) {
    std::optional<CollectionSlip> found;
    if (transactionNumber.isEmpty()) return found;
    db::forEachRow(kByTransaction(transactionNumber), [&](db::CVORecordset& row) {
        if (found) return;
        found = slipOf(row);
        found->BANKTRANNO = transactionNumber.toString();
    });
    return found;
}

platform::Rows collectionsOfDay(QStringView userId, QStringView date) {
    return db::selectRows(kOfDay(userId, date), 3);
}

std::optional<QList<CollectionSlip>> slipsOfDay(QStringView date, QStringView userId) {
    return allRows(kAllOfDay(date, userId, userId));
}

std::optional<QList<CollectionSlip>> approvedSlips(QStringView first, QStringView last) {
    return allRows(kApproved(first, last));
}

std::optional<CollectionSlip> putApproved(db::Transaction& transaction, const CollectionSlip& approved) {
    CollectionSlip slip = approved;
    const auto rows = [&] { return wholeRows(kOwn(slip.DDate, slip.JunNo, slip.UserID)); };
    QList<CollectionSlip> before = rows();
    const auto isOthers = [&](const CollectionSlip& row) {
        return row.GCode != slip.GCode || row.isApproved() || row.isSimplePayment();
    };
    // A number is given anew once its slip is deleted.
    if (!slip.isSimplePayment() &&
        (std::ranges::any_of(before, isOthers) ||
         db::hasRow(kOthersSalesSlip(slip.DDate, slip.JunNo, slip.UserID, slip.GCode)))) {
        slip = receivedWithoutSale(slip);
        slip.JunNo = nextSimplePaymentNumber(slip.DDate);
        before = rows();
    } else if (slip.Gubun == kCollectionOfSale &&
               !db::hasRow(kOwnSalesSlip(slip.DDate, slip.JunNo, slip.UserID, slip.GCode))) {
        slip = receivedWithoutSale(slip);
    } else if (before.size() == 1) {
        slip = payCredit(before.first(), slip).value_or(slip);
    }
    const bool isThere = !slip.isSimplePayment() && before.size() == 1 && isUnapproved(before.first(), slip);
    const bool replaces = !isThere && !slip.isSimplePayment();
    if (isThere) {
        slip.DTime = before.first().DTime;
        transaction.connection().Execute(
            kApprove(slip.MSGSENDTIME, slip.BANKTRANNO, slip.DDate, slip.JunNo, slip.UserID));
    } else {
        slip.DTime = timeOfSaving();
        // A simple payment stays beside another of its number: each holds an approval of its own.
        if (replaces) transaction.connection().Execute(kDeleteOwn(slip.DDate, slip.JunNo, slip.UserID));
        transaction.connection().Execute(kInsertApproved(RowTexts(slip).values<kColumns + 2>()));
    }
    const QList<CollectionSlip> expected =
        slip.isSimplePayment() ? before + QList<CollectionSlip>{slip} : QList<CollectionSlip>{slip};
    if (!slip.isApproved() || rows() != expected) return std::nullopt;
    if (replaces && (!forgetPrints(transaction, Paper::CollectionSlip, slip.DDate, slip.JunNo, slip.UserID) ||
                     !takeReceivablesBack(transaction, before) ||
                     !moveReceivable(transaction, slip.GCode, slip.receivableEffect()))) {
        return std::nullopt;
    }
    // A sale that has grown since is not paid.
    if (!slip.isSimplePayment() && slip.UnderMoney <= Won() &&
        !transaction.run(kMarkPaid(slip.DDate, slip.JunNo, slip.UserID)))
        return std::nullopt;
    return slip;
}

bool takeApprovalOff(db::Transaction& transaction, QStringView transactionNumber) {
    const auto slip = findByTransactionNumber(transactionNumber);
    if (!slip) return true;
    if (slip->isSimplePayment()) return transaction.run(kDeleteSimple(transactionNumber));
    return transaction.run(kTakeApprovalOff(transactionNumber)) &&
           transaction.run(kMarkUnpaid(slip->DDate, slip->JunNo, slip->UserID)) &&
           forgetPrints(transaction, Paper::CollectionSlip, slip->DDate, slip->JunNo, slip->UserID);
}

Won receivable(QStringView gCode) {
    const std::optional<QStringList> customer = db::firstRow(kReceivable(gCode));
    return customer ? parseWon(customer->value(0)) : Won();
}

Won previousReceivable(QStringView gCode, QStringView date, QStringView junNo, QStringView userId) {
    Won balance = receivable(gCode);
    for (const CollectionSlip& slip : wholeRows(kOwn(date, junNo, userId))) {
        if (slip.GCode == gCode) balance -= slip.receivableEffect();
    }
    return balance;
}

}  // namespace books
