#pragma once

#include <QDate>
#include <QString>
#include <QStringView>
#include <functional>

#include "books/TransactionRecord.h"
#include "van/screens/KsnetMsgLib.h"

/// What the screens ask of the card network's component, and how they word its status codes.
namespace van {

enum class RequestKind { CardPayment, CashPayment, Balance, PreviousTransaction, Summary };

/// Calls the component for one request, in the order that every request keeps: the two saved values, header,
/// request, exchange. A call that fails does not stop the ones after it. Returns the texts of the failures,
/// in order, for the status log; empty when all went well. Payment and balance take the card and the amounts
/// from `record`. `mayLeave` is asked with the message number before a sealed payment leaves; when it says
/// no, the exchange is not started. A summary is asked for of `day`, without one of the clock's.
QString sendRequest(CKsnet_msg_lib& component, RequestKind kind, const books::TransactionRecord& record,
                    const std::function<bool(const QString& number)>& mayLeave = {}, const QDate& day = {});

/// Asks what became of the payment with that message number, as a previous-transaction request.
/// Returns what went wrong, for the status log; empty when all went well.
QString askAbout(CKsnet_msg_lib& component, QStringView number);

/// The address that 12 digits stand for, three for each octet: 210011022003 is 210.11.22.3. Missing digits
/// read as 0. An IPv6 address, which is saved as its text, stays what it is.
QString hostAddress(QStringView savedDigits);

/// Reads a payment's or a balance's reply into the record, and returns what the status log gains.
QString readReply(CKsnet_msg_lib& component, books::RequestType type, books::HostReply* reply);

/// One numbered field of the last reply; empty when it has none.
QString receivedField(CKsnet_msg_lib& component, short number);

}  // namespace van
