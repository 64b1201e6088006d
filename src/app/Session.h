#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "books/TransactionRecord.h"
#include "platform/SecureBytes.h"
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

/// The values that one menu action collects; the next action starts with them empty and 0. Where no reader is
/// named the value is kept for the record.
struct ActionValues {
    // The slip at hand: written by the lists (132, 144, 150, 391) and, for a new slip, by the customer list
    // (144) and the main dialog and the simple payment (104); read by every screen of the work.
    QString GCode;         ///< Customer code; where a list knows only the name, the slip's own lines say it.
    QString GName;         ///< Customer name.
    QString JunNo;         ///< Slip number.
    QString SlipState;     ///< `WorkGubun` of the slip chosen in list 132, which reads it to delete the slip.
    QString CustomerKind;  ///< `Gubun` of the customer; from the slip to prices and product search.

    // The choices of the searches.
    QString SeekValue;      ///< Consonant pressed last, or "00"; from the boards to the searches behind them.
    QString PCode;          ///< Product chosen in the product search (139); read by the sales slip.
    QString JGubun;         ///< Its liquor class.
    int ProductChosen = 0;  ///< 1 when the product search was left with a product; read by board and slip.

    /// Where the product search was left with a product; written by it (139), and read by it when the sales
    /// slip asks it to go on there.
    struct SearchPlace {
        bool isKept = false;
        int list = 0;   ///< Which of its lists.
        int entry = 0;  ///< Of the classes.
        QString seek;
        QString typed;
        int scrolled = 0;  ///< Pixels.
    };
    SearchPlace Search;
    bool ResumesSearch = false;  ///< From the sales slip to the search.
    int PastOrder = -1;          ///< The slip chosen in list 465, counted from the newest.

    QString SelectedContainerGName;  ///< Customer name of the container slip chosen in list 391.
    QString SelectedContainerPCode;  ///< Product chosen in search 397; read by the container slip.
    QString ContainerSearchKey;      ///< Consonant of that search; empty lists all.
    bool SeeksContainer = false;     ///< From the container slip to the board: open 397, not 139.
    int ContainerSearchResult = 0;   ///< 1 when 397 was left with a product; read by board and slip.

    // The sums of the slip on screen, won; written by the sales slip and, before 결제, by its list. Where no
    // reader is named the value is kept for the record: the collection entry takes the slip as it was saved.
    platform::Won SupplySum;
    platform::Won VatSum;
    platform::Won CrateDepositSum;  ///< Also as the collection entry opens.
    platform::Won BottleDepositSum;

    // What 완료 hands over, won; written with the sums.
    platform::Won CheckoutSales;  ///< Supply and VAT.
    platform::Won CheckoutSupply;
    platform::Won CheckoutVat;
    platform::Won CheckoutDeposits;  ///< Crates and bottles.
    platform::Won CheckoutTotal;
    platform::Won CheckoutReceivable;  ///< The customer's balance before this visit.

    bool UnvisitedFirst = false;  ///< List 132 has the orders to be delivered on top; from the main dialog.

    /// The days whose visits dialog 460 is to check, "yyyy-MM-dd". Written by who opens it.
    QStringList CheckedDays;

    /// What the container slip that was just finished is worth, in won; nothing when none was. Written by the
    /// container screens, used up by the collection entry.
    std::optional<platform::Won> ContainerRecovery;
    bool IsRecoveryMoved = false;  ///< The saved collection has taken it over already.

    /// What was keyed on the collection entry that was left with 이전; written and read by it (450).
    std::optional<books::KeptSettlement> KeptSettlement;

    /// The slip's screen goes on with the working slip as it stands; written at login, used up by the screen.
    bool IsResumed = false;
};

/// The record that all screens share.
struct SessionValues {
    // Written by the login.
    QString UserID;
    QString WorkDate;  ///< "yyyy-MM-dd".

    // The third to tenth column of the user's row, by position; written by the login.
    QString UserField2;  ///< Name.
    QString UserField3;  ///< VAT rounding mode: "2" to 10 won, "3" to 100 won, anything else none.
    QString UserField4;  ///< What follows a sales slip: "N", "Y", "Z" or anything else.
    QString UserField5;  ///< "X" hides the container work.
    QString UserField6;  ///< "Y": products are searched on the consonant board.
    QString UserField7;  ///< Telephone.
    QString UserField8;
    QString UserField9;

    // The distributor's particulars, columns of the same names; written at start-up. The main dialog shows
    // `sangho` and `calltel`; the papers read the table again, as they stand when one is printed.
    QString sangho;
    QString sno;
    QString name;
    QString tel;
    QString fax;
    QString juso;
    QString calltel;
    QString cardid;
    platform::SecureText cardpass;
    QString cardno;

    QString ImportPending;  ///< "Y" when an import file waits, else "N".
    int WorkMode = 0;       ///< Written by the main dialog as an action starts.
    int SlipDone = 0;       ///< 1 once the visit is finished: every screen on the way back closes.

    /// The finished visit goes on to the list that it came from; from 142 and 449, used up by the main
    /// dialog.
    bool ReturnsToList = false;

    ActionValues action;
};

/// The one session of the process.
SessionValues& session();

/// Starts a menu action: its values become empty and 0, and both working tables are emptied.
void resetSession();

}  // namespace app
