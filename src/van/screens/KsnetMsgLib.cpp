#include "van/screens/KsnetMsgLib.h"

#include <span>

namespace van {

using platform::message::Argument;

short CKsnet_msg_lib::InvokeHelper(int dispatchId, std::initializer_list<Argument> arguments) {
    return component_.invoke(dispatchId, std::span(arguments.begin(), arguments.size()));
}

void CKsnet_msg_lib::AboutBox() {
    InvokeHelper(-552);
}

short CKsnet_msg_lib::HeaderReq(QStringView p1, QStringView p2, QStringView p3, QStringView p4,
                                QStringView p5, QStringView p6, QStringView messageKind) {
    return InvokeHelper(1, {p1, p2, p3, p4, p5, p6, messageKind});
}

short CKsnet_msg_lib::PaymentReq(QStringView p1, QStringView p2, QStringView cardData, QStringView password,
                                 QStringView p5, QStringView supply, QStringView vat, QStringView deposit,
                                 QStringView recoveryFlag, QStringView recovery, QStringView amount) {
    return InvokeHelper(
        2, {p1, p2, cardData, password, p5, supply, vat, deposit, recoveryFlag, recovery, amount});
}

short CKsnet_msg_lib::setPreTradeRep() {
    return InvokeHelper(3);
}

short CKsnet_msg_lib::BalanceReq(QStringView time, QStringView cardData, QStringView password,
                                 QStringView p4) {
    return InvokeHelper(4, {time, cardData, password, p4});
}

short CKsnet_msg_lib::Operation5(QStringView p1, QStringView p2) {
    return InvokeHelper(5, {p1, p2});
}

short CKsnet_msg_lib::setSummaryReq(QStringView time, QStringView date) {
    return InvokeHelper(6, {time, date});
}

short CKsnet_msg_lib::Operation7(QStringView p1, QStringView p2, QStringView p3, QStringView p4,
                                 QStringView p5, QStringView p6, QStringView p7, QStringView p8,
                                 QStringView p9, QStringView p10) {
    return InvokeHelper(7, {p1, p2, p3, p4, p5, p6, p7, p8, p9, p10});
}

short CKsnet_msg_lib::Operation8(QStringView p1, QStringView p2, QStringView p3, QStringView p4,
                                 QStringView p5, QStringView p6, QStringView p7, QStringView p8,
                                 QStringView p9, QStringView p10, QStringView p11, QStringView p12,
                                 QStringView p13) {
    return InvokeHelper(8, {p1, p2, p3, p4, p5, p6, p7, p8, p9, p10, p11, p12, p13});
}

short CKsnet_msg_lib::Operation9(QStringView p1, QStringView p2) {
    return InvokeHelper(9, {p1, p2});
}

short CKsnet_msg_lib::RecvHeader() {
    return InvokeHelper(10);
}

short CKsnet_msg_lib::RecvPayment() {
    return InvokeHelper(11);
}

short CKsnet_msg_lib::RecvPreTrade() {
    return InvokeHelper(12);
}

short CKsnet_msg_lib::Operation13() {
    return InvokeHelper(13);
}

short CKsnet_msg_lib::RecvBalance() {
    return InvokeHelper(14);
}

short CKsnet_msg_lib::Operation15() {
    return InvokeHelper(15);
}

short CKsnet_msg_lib::RecvSummary() {
    return InvokeHelper(16);
}

short CKsnet_msg_lib::Operation17() {
    return InvokeHelper(17);
}

short CKsnet_msg_lib::Operation18() {
    return InvokeHelper(18);
}

short CKsnet_msg_lib::Operation19() {
    return InvokeHelper(19);
}

short CKsnet_msg_lib::Operation20() {
    return InvokeHelper(20);
}

short CKsnet_msg_lib::Operation21() {
    return InvokeHelper(21);
}

short CKsnet_msg_lib::GetRecvField(short number, QString* text) {
    return InvokeHelper(22, {number, text});
}

short CKsnet_msg_lib::Operation23(short p1, QStringView p2, short p3, short p4, short p5, QStringView p6,
                                  QStringView p7, QStringView p8, QStringView p9, QStringView p10,
                                  QString* p11, QString* p12, QString* p13, QString* p14, QString* p15) {
    return InvokeHelper(23, {p1, p2, p3, p4, p5, p6, p7, p8, p9, p10, p11, p12, p13, p14, p15});
}

short CKsnet_msg_lib::GetSavedValue(QStringView key, QString* value) {
    return InvokeHelper(24, {key, value});
}

short CKsnet_msg_lib::Commun(QStringView hostAddress, short port, short timeOut, short flag) {
    return InvokeHelper(25, {hostAddress, port, timeOut, flag});
}

short CKsnet_msg_lib::Operation26(QString* p1, QString* p2, QString* p3, QString* p4, QString* p5) {
    return InvokeHelper(26, {p1, p2, p3, p4, p5});
}

}  // namespace van
