#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "platform/Won.h"

namespace app {

/// What the menu action in progress is. `SessionValues::WorkMode` holds the number.
enum WorkMode {
    kSalesWork = 1,
    kCollectionWork = 2,
    kContainerWork = 3,
    kTotalsWork = 4,
    kSimplePayment = 6,
    kBalanceInquiry = 72,
    kPreviousTransaction = 73,
};

/// The values that one menu action collects; the next action starts with them empty and 0.
struct ActionValues {
    QString GCode;         ///< Customer code.
    QString GName;         ///< Customer name.
    QString JunNo;         ///< Slip number.
    QString SlipState;     ///< `WorkGubun` of the slip chosen in the slip list.
    QString CustomerKind;  ///< `Gubun` of the slip's customer.
    QString SeekValue;     ///< Consonant key pressed last, or "00"; compared with the `Seek` columns.
    QString PCode;         ///< Product chosen in the product search.
    QString JGubun;        ///< Its liquor class.

    int ProductChosen = 0;  ///< 1 when the product search was left with a product.

    QString SelectedContainerGName;  ///< Customer name of the container slip chosen in the list.
    QString SelectedContainerPCode;  ///< Product chosen in the container product search.
    QString ContainerSearchKey;      ///< Its consonant, compared with `PUMMOK.seek`; empty lists all.
    bool SeeksContainer = false;     ///< The product board opens that search, not the one of the sales.
    int ContainerSearchResult = 0;   ///< 1 when the container product search was left with a product.

    // The sums of the slip on screen, won.
    platform::Won SupplySum;
    platform::Won VatSum;
    platform::Won CrateDepositSum;
    platform::Won BottleDepositSum;

    // What 완료 hands over to the collection of money, won.
    platform::Won CheckoutSales;  ///< Supply and VAT.
    platform::Won CheckoutSupply;
    platform::Won CheckoutVat;
    platform::Won CheckoutDeposits;  ///< Crates and bottles.
    platform::Won CheckoutTotal;
    platform::Won CheckoutReceivable;  ///< The customer's balance before this visit.

    /// The days whose visits dialog 460 is to check, "yyyy-MM-dd".
    QStringList CheckedDays;

    /// What the container slip that was just finished is worth, in won; nothing when none was.
    std::optional<platform::Won> ContainerRecovery;
    bool IsRecoveryMoved = false;  ///< The saved collection has taken it over already.
};

/// The record that all screens share.
struct SessionValues {
    QString UserID;
    QString WorkDate;  ///< "yyyy-MM-dd", fixed at login.

    // The third to tenth column of the user's row, by position.
    QString UserField2;  ///< Name.
    QString UserField3;  ///< VAT rounding mode: "2" to 10 won, "3" to 100 won, anything else none.
    QString UserField4;  ///< What follows a sales slip: "N", "Y", "Z" or anything else.
    QString UserField5;  ///< "X" hides the container work.
    QString UserField6;  ///< "Y": products are searched on the consonant board.
    QString UserField7;  ///< Telephone.
    QString UserField8;
    QString UserField9;

    // The distributor's particulars, columns of the same names.
    QString sangho;
    QString sno;
    QString name;
    QString tel;
    QString fax;
    QString juso;
    QString calltel;
    QString cardid;
    QString cardpass;
    QString cardno;

    QString ImportPending;  ///< "Y" when an import file waits, else "N".
    int WorkMode = 0;
    int SlipDone = 0;  ///< 1 once the visit is finished: every screen on the way back closes.

    ActionValues action;
};

/// The one session of the process.
SessionValues& session();

/// Starts a menu action: its values become empty and 0, and both working tables are emptied.
void resetSession();

}  // namespace app
