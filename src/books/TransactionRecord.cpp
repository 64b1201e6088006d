#include "books/TransactionRecord.h"

namespace books {

TransactionRecord& transactionRecord() {
    static TransactionRecord record;
    return record;
}

void resetTransactionRecord() {
    TransactionRecord& record = transactionRecord();
    record.requestType = RequestType::None;
    record.paymentKind.clear();
    record.slip = {};
    record.amounts = {};
    record.amountToCharge = {};
    record.cardPaymentFlag = 0;
    record.track2.clear();
    record.track3.clear();
    record.password.clear();
    record.reply = {};
    record.customer = {};
    record.printSelector = 1;
}

}  // namespace books
