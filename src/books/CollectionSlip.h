#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <array>
#include <optional>

#include "books/TransactionRecord.h"
#include "db/Transaction.h"
#include "db/VORecordset.h"
#include "platform/Rows.h"
#include "platform/Won.h"

/// The collection slips, in `MTMOK`, and the customers' receivables that move with them. A change of both is
/// one transaction: the database holds the slip and the balance as they were or as they are, never half.
namespace books {

/// `Gubun` of a collection slip.
inline constexpr QStringView kCollectionOfSale = u"매출";  ///< Belongs to a sales slip.
inline constexpr QStringView kCollectionAlone = u"입금";   ///< Money without a sales slip.
/// `GCode` of a simple payment of a customer whom nobody chose.
inline constexpr QStringView kUnregisteredCustomer = u"XXXX";

inline constexpr QStringView kSimplePaymentSlip = u"단순결제";  ///< A sale by card, without a sales slip.

/// One row of `MTMOK`: its columns by their names, amounts in won.
struct CollectionSlip {
    QString DDate;  ///< "yyyy-MM-dd".
    QString Gubun;  ///< Set by what saves the slip.
    QString GCode;
    QString GName;
    QString JunNo;
    QString DTime;  ///< "HH:mm", set by what saves the slip.
    QString UserID;
    platform::Won MMoney;       ///< Sales, supply and VAT.
    platform::Won PMoney;       ///< Supply.
    platform::Won BMoney;       ///< VAT.
    platform::Won YMoney;       ///< Crate deposit.
    platform::Won GMoney;       ///< Bottle deposit.
    platform::Won YGMoney;      ///< Both deposits.
    platform::Won InMoney;      ///< Cash and card.
    platform::Won WonMoney;     ///< Cash.
    platform::Won CardMoney;    ///< Card.
    platform::Won MisuInMoney;  ///< Earlier receivable paid.
    platform::Won UnderMoney;   ///< Unpaid.
    platform::Won YDMoney;      ///< Container recovery.
    platform::Won GDMoney;      ///< Non-liquor amount.
    QString MSGSENDTIME;        ///< When the approved request was sent; empty without an approval.
    QString BANKTRANNO;         ///< The card network's transaction number; empty without an approval.

    bool isSimplePayment() const { return Gubun == kSimplePaymentSlip; }
    bool isApproved() const { return !BANKTRANNO.isEmpty(); }

    /// Takes the amounts over. `crateDeposit` is the part of `amounts.deposit` charged for crates.
    void setAmounts(const SettlementAmounts& amounts, platform::Won crateDeposit);

    /// The slip's amounts. The total is that of the screen the slip comes from: sales and deposits, or in a
    /// simple payment sales and non-liquor less the recovery. The previous receivable is 0: it is no column.
    SettlementAmounts amounts() const;

    /// What the slip adds to the customer's receivable: sales and deposits less all that was paid against
    /// them. 0 for a simple payment, where sale and payment are one.
    platform::Won receivableEffect() const;

    /// True when the recovery above the total is booked as paid against the earlier receivable, while no
    /// money changed hands.
    bool isExcessBooked() const;

    /// Makes the slip one without container recovery: what was booked of it beyond the total goes with it,
    /// what was paid stays, and the sale's difference is unpaid.
    void takeRecoveryBack();

    /// The cash in won that the slip brought in, below 0 where it went out: cash and earlier receivable paid,
    /// without what isExcessBooked.
    platform::Won cashTaken() const;

    friend bool operator==(const CollectionSlip&, const CollectionSlip&) = default;
};

inline constexpr int kCollectionColumns = 22;

/// The slip's columns in the table's order, amounts in decimal digits.
std::array<QString, kCollectionColumns> columnTexts(const CollectionSlip& slip);

/// The slip whose columns stand in a row in that order, from `firstColumn` on.
CollectionSlip readCollection(db::CVORecordset& row, int firstColumn);

/// Replaces the slip of that date, number and user, and moves the customer's receivable from what the
/// replaced row had made of it to what this one makes. What another customer has under the number gets one of
/// its own (freeNumber). `Gubun` is "매출" when MTM has the sales slip of that
/// date, number and user, else "입금"; a simple payment that is corrected stays one. `DTime` is the clock's.
/// An approval that the replaced row carries stays on the slip; the slip's own last two columns are not
/// looked at. The prints of a slip that changes are forgotten. False when the slip did not get in (disk full,
/// a single quote in a text, several approvals under its number): slip and receivable are then as before.
/// `before` receives the row that it replaces, nothing where there was none.
bool saveCollection(const CollectionSlip& slip, std::optional<CollectionSlip>* before = nullptr);

/// The row that the entry of a collection has replaced last, for the way back out of its payment; nothing
/// when it has replaced none.
std::optional<CollectionSlip>& replacedCollection();

/// Takes the entry of a collection back whose payment is given up: puts replacedCollection() back, or without
/// one of that date, number and user deletes the row. False when that failed; it can be tried again then.
bool takeBackCollection(QStringView date, QStringView junNo, QStringView userId);

/// Deletes the user's slip of that date and number, notes that he did (noteDeletion) and takes its receivable
/// back. True also when there was none; false when the database did not take the change, and then nothing is.
bool removeCollection(QStringView date, QStringView junNo, QStringView userId);

/// The same whoever wrote the slip: another user's slip of that number and date goes with it.
bool removeCollections(QStringView date, QStringView junNo, QStringView deletedBy);

/// The same as part of `transaction`, for what deletes more along with it. After false it must not be
/// committed.
[[nodiscard]] bool removeCollections(db::Transaction& transaction, QStringView date, QStringView junNo,
                                     QStringView deletedBy);

/// The slips of that date and number that carry an approval, whoever wrote them.
QList<CollectionSlip> approvedUnder(QStringView date, QStringView junNo);

/// Takes back as part of `transaction` what the collections of that date, number and user, or with an empty
/// id of everybody, have for a container slip that is about to go: its own user's and customer's. A
/// collection of which nothing is left goes too. Returns what they had for it, in won; after nothing, when
/// the database did not take it, the transaction must not be committed.
[[nodiscard]] std::optional<platform::Won> takeRecoveriesBack(db::Transaction& transaction, QStringView date,
                                                              QStringView junNo, QStringView userId);

/// The slip; nothing when MTMOK has no such row.
std::optional<CollectionSlip> loadCollection(QStringView date, QStringView junNo, QStringView userId);

/// The slip of an approved exchange, by the card network's transaction number, without its MSGSENDTIME;
/// nothing for an empty or unknown number.
std::optional<CollectionSlip> findByTransactionNumber(QStringView transactionNumber);

/// The user's slips of the day, highest number first: slip number, customer name, customer code.
platform::Rows collectionsOfDay(QStringView userId, QStringView date);

/// All slips of the day by number, of one user or, with an empty id, of everybody; nothing when they could
/// not be read to the end.
std::optional<QList<CollectionSlip>> slipsOfDay(QStringView date, QStringView userId);

/// The slips of whatever user that carry an approval whose request was sent from `first` to `last`, both
/// "yyyyMMddHHmmss" and included, by number and time; nothing when they could not be read to the end.
std::optional<QList<CollectionSlip>> approvedSlips(QStringView first, QStringView last);

/// Puts the slip of an approved payment into MTMOK as part of `transaction`, its last two columns included,
/// and makes the sales slip of the same date, number and user "결제". The row that is there without the
/// approval gets it; one on credit is paid by it (payCredit); one that says something else is replaced. The
/// receivable moves as when it is saved. A simple payment, which does not move it, is added to what is there.
/// Where the number is another customer's or carries another approval, the slip comes in under the next
/// number from 7001 on, there and where its sale is gone as money without one (receivedWithoutSale). Returns
/// the slip as it stands. After nothing, when the database did not take it, the transaction must not be
/// committed.
[[nodiscard]] std::optional<CollectionSlip> putApproved(db::Transaction& transaction,
                                                        const CollectionSlip& slip);

/// Takes the approval with that number off its slip again as part of `transaction`, for one that was noted by
/// mistake: the slip's amounts stay, its sale is no longer "결제", and a simple payment, which is nothing
/// without it, goes. After false the transaction must not be committed.
[[nodiscard]] bool takeApprovalOff(db::Transaction& transaction, QStringView transactionNumber);

/// The customer's receivable balance, `CJMoney`, in won; 0 for a customer who is not there.
platform::Won receivable(QStringView gCode);

/// The receivable in won from before the slip: the balance less what the customer's saved collection slip of
/// that date, number and user has moved it by.
platform::Won previousReceivable(QStringView gCode, QStringView date, QStringView junNo, QStringView userId);

}  // namespace books
