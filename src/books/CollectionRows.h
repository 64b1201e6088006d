#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <array>
#include <optional>

#include "books/Receivable.h"
#include "books/TransactionRecord.h"
#include "db/Transaction.h"
#include "db/VORecordset.h"
#include "platform/Rows.h"
#include "platform/Won.h"

/// The rows of `MTMOK`, read and written whole. Who changes one also moves the customer's receivable
/// (books/CollectionSlip).
namespace books {

/// `Gubun` of a collection slip.
inline constexpr QStringView kCollectionOfSale = u"매출";       ///< Belongs to a sales slip.
inline constexpr QStringView kCollectionAlone = u"입금";        ///< Money without a sales slip.
inline constexpr QStringView kSimplePaymentSlip = u"단순결제";  ///< A sale by card, without a sales slip.

/// `GCode` of a simple payment of a customer whom nobody chose.
inline constexpr QStringView kUnregisteredCustomer = u"XXXX";

struct SaleAmounts;

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

    /// What the slip has for its sale.
    SaleAmounts sale() const;

    /// What the slip adds to the customer's receivable (books::receivableEffect). 0 for a simple payment,
    /// where sale and payment are one.
    platform::Won receivableEffect() const;

    /// True when the recovery above the total is booked as paid against the earlier receivable, while no
    /// money changed hands.
    bool isExcessBooked() const;

    /// Makes the slip one without container recovery: what was booked of it beyond the total goes with it,
    /// what was paid stays, and the sale's difference is unpaid.
    void takeRecoveryBack();

    /// Gives the slip the amounts of a sale that has changed by `difference`. What was paid stays and the
    /// difference is unpaid, below 0 where too much was paid; an excess of the recovery that is booked
    /// follows the total.
    void moveSale(const SaleAmounts& difference);

    /// Gives the slip the recovery of a container slip that has changed by `difference`, in the same way.
    void moveRecovery(platform::Won difference);

    /// True when the slip says anything of goods, money or containers.
    bool hasAmounts() const;

    /// The cash in won that the slip brought in, below 0 where it went out: cash and earlier receivable paid,
    /// without what isExcessBooked.
    platform::Won cashTaken() const;

    friend bool operator==(const CollectionSlip&, const CollectionSlip&) = default;

  private:
    /// After a change of the total or the recovery: what is unpaid moves by `difference`, or the excess that
    /// is `booked` becomes that of the new amounts.
    void follow(ExcessBooking booked, platform::Won difference);
};

inline constexpr int kCollectionColumns = 22;

/// The slip's columns in the table's order, amounts in decimal digits.
std::array<QString, kCollectionColumns> columnTexts(const CollectionSlip& slip);

/// The slip whose columns stand in a row in that order, from `firstColumn` on.
CollectionSlip readCollection(db::CVORecordset& row, int firstColumn);

/// The rows of a date, number and user, or with an empty id of everybody. None when they broke off.
QList<CollectionSlip> collectionRows(QStringView date, QStringView junNo, QStringView userId);

/// Of those, the ones beside which a container slip of the same user and customer stands, without simple
/// payments; nothing when they broke off.
std::optional<QList<CollectionSlip>> collectionsOfContainers(QStringView date, QStringView junNo,
                                                             QStringView userId);

/// The first of them; nothing when MTMOK has no such row.
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

// What writes is part of `transaction`, which must not be committed after false.

/// Puts the slip, with the approval that it carries, in the place of the rows of its date, number and user.
[[nodiscard]] bool writeRow(db::Transaction& transaction, const CollectionSlip& slip);

/// Writes the slip's approval into the rows of its date, number and user.
[[nodiscard]] bool writeApproval(db::Transaction& transaction, const CollectionSlip& slip);

/// Adds the slip of an approved payment beside what has its number.
[[nodiscard]] bool addApprovedRow(db::Transaction& transaction, const CollectionSlip& slip);

/// Deletes the rows of a date, number and user, or with an empty id of everybody.
[[nodiscard]] bool deleteRows(db::Transaction& transaction, QStringView date, QStringView junNo,
                              QStringView userId);

}  // namespace books
