#pragma once

#include <QString>
#include <optional>

#include "books/Customer.h"
#include "platform/SecureBytes.h"
#include "platform/Won.h"

namespace books {

/// What a request to the card host was for.
enum class RequestType { None, BalanceInquiry = 1, Payment = 2, PreviousTransaction = 3 };

/// The amounts that a visit or a simple payment settles, in won.
struct SettlementAmounts {
    platform::Won sales;  ///< 주류매출액: supply and VAT.
    platform::Won supply;
    platform::Won vat;
    platform::Won nonLiquor;          ///< 비주류금액.
    platform::Won deposit;            ///< Container deposits charged on the visit.
    platform::Won total;              ///< 합계.
    platform::Won containerRecovery;  ///< 용공회수액: empties taken back, set against the total.
    platform::Won card;
    platform::Won cash;
    platform::Won unpaid;             ///< 미결제액.
    platform::Won earlierReceivable;  ///< 전미수입금: paid against older debt.
    platform::Won previousReceivable;

    friend bool operator==(const SettlementAmounts&, const SettlementAmounts&) = default;
};

/// The fields of the host's last reply, as texts.
struct HostReply {
    QString responseCode;       ///< 1102; "0000" alone means success.
    QString responseText;       ///< 1203.
    QString transactionNumber;  ///< 1008.
    QString identification;     ///< 1002.
    QString balanceSign;        ///< 1103; "0" positive.
    QString transactionAmount;  ///< 1104.
    QString feeAmount;          ///< 1105.
    QString depositedAmount;    ///< 1106.
    QString remainingAmount;    ///< 1107.
    QString accountBalance;     ///< 1109.
    QString withdrawalLimit;    ///< 1110.
};

/// The saved slip that an exchange pays or reprints.
struct SlipIdentity {
    QString date;  ///< "yyyy-MM-dd".
    QString junNo;
    QString userId;
    QString gCode;

    friend bool operator==(const SlipIdentity&, const SlipIdentity&) = default;
};

/// A settlement that was left before it was saved for good: what its screen opened with, and what was keyed.
struct KeptSettlement {
    SlipIdentity slip;
    SettlementAmounts opened;
    SettlementAmounts keyed;
    /// What the container slip was worth as the screen opened; nothing without one.
    std::optional<platform::Won> recovery;
};

/// The record of one exchange with the card host. Where no reader is named the value is kept for the record.
struct TransactionRecord {
    // Written by the collection screens, for a reprint by the card dialog, which reads them with its rules.
    SettlementAmounts amounts;

    // Written by the card dialog as it opens.
    SlipIdentity slip;             ///< Read by the card dialog: what is approved, and printed.
    QString paymentKind;           ///< "1" card, "2" cash, empty for neither.
    platform::Won amountToCharge;  ///< That of books::amountToCharge; shown by the dialog.
    int cardPaymentFlag = 0;       ///< 1 sends a card payment whatever the card amount is.
    Customer customer;             ///< The customer as a receipt names him.

    // Written by the card dialog at a swipe and wiped as it closes; read into the request.
    platform::SecureText track2;
    platform::SecureText track3;
    platform::SecureText password;

    // Written as a request leaves and as its answer comes.
    RequestType requestType = RequestType::None;  ///< Read when the answer comes.
    HostReply reply;                              ///< Read by the card dialog and its receipts.

    int printSelector = 1;  ///< 1 seller's copy, 2 buyer's copy; written as each is printed.
};

/// The one transaction record of the process.
TransactionRecord& transactionRecord();

/// Empties the record before a payment is prepared; tracks and password are wiped.
void resetTransactionRecord();

}  // namespace books
