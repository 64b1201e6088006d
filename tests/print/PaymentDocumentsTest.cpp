#include <gtest/gtest.h>

#include "platform/CodePage.h"
#include "print/CardReceipt.h"
#include "print/CollectionSlip.h"
#include "print/Layout.h"
#include "print/SalesInvoice.h"
#include "support/Approved.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using print::Copy;

constexpr QStringView kDate = u"2024-05-10";

class PaymentDocuments : public testing::Test {
  protected:
    PaymentDocuments() {
        device_.insert(u"config", {{u"sangho", u"로바나주류(주)"},
                                   {u"sno", u"123-81-45678"},
                                   {u"name", u"김대표"},
                                   {u"calltel", u"1588-0000"}});
        device_.insert(u"PDAUSER",
                       {{u"userID", u"A"}, {u"userNAME", u"홍길동"}, {u"userTEL", u"010-1111-2222"}});
        device_.insert(u"GARAE", {{u"GCODE", u"0001"},
                                  {u"GNAME", u"똠양꿍 하우스"},
                                  {u"GUPJU", u"이사장"},
                                  {u"SNO", u"220-05-98765"},
                                  {u"CJMONEY", u"366000"},
                                  {u"JUSO", u"서울 마포구 양화로 45"}});
        device_.insert(u"MTM", {{u"DDate", kDate},
                                {u"GCode", u"0001"},
                                {u"GName", u"똠양꿍 하우스"},
                                {u"JunNo", u"5001"},
                                {u"PCode", u"1001"},
                                {u"PName", u"참이슬후레쉬"},
                                {u"Box", u"4"},
                                {u"Bon", u"0"},
                                {u"MMoney", u"100000"},
                                {u"BMoney", u"10000"},
                                {u"YMoney", u"3000"},
                                {u"GMoney", u"2000"},
                                {u"UserID", u"A"},
                                {u"DTime", u"14:25"}});
        // Charges 115000 and settles 99000: the balance was 350000.
        addSlip(u"매출", u"5001", u"20240510000123");
    }

    void addSlip(QStringView kind, QStringView number, QStringView transaction, QStringView card = u"60000",
                 QStringView customer = u"0001") {
        device_.insert(u"MTMOK", {{u"DDate", kDate},           {u"Gubun", kind},
                                  {u"GCode", customer},        {u"GName", u"똠양꿍 하우스"},
                                  {u"JunNo", number},          {u"DTime", u"14:30"},
                                  {u"UserID", u"A"},           {u"MMoney", u"110000"},
                                  {u"PMoney", u"100000"},      {u"BMoney", u"10000"},
                                  {u"YMoney", u"3000"},        {u"GMoney", u"2000"},
                                  {u"YGMoney", u"5000"},       {u"InMoney", u"80000"},
                                  {u"WonMoney", u"20000"},     {u"CardMoney", card},
                                  {u"MisuInMoney", u"4000"},   {u"UnderMoney", u"20000"},
                                  {u"YDMoney", u"15000"},      {u"GDMoney", u"700"},
                                  {u"BANKTRANNO", transaction}});
    }

    static print::CardExchange exchange(const QString& transaction) {
        return {.reply = {.responseCode = u"0000"_s,
                          .responseText = u"승인"_s,
                          .transactionNumber = transaction,
                          .identification = u"ID-77"_s,
                          .balanceSign = u"0"_s,
                          .transactionAmount = u"80000"_s,
                          .feeAmount = u"0000000500"_s,
                          .depositedAmount = u"79500"_s,
                          .remainingAmount = u"1234567"_s,
                          .accountBalance = {},
                          .withdrawalLimit = {}},
                .maskedCardNumber = print::maskedCardNumber(u"9410123456789012=2912101")};
    }

    static QString text(const std::optional<print::Document>& document) {
        if (!document) return {};
        EXPECT_TRUE(platform::codepage::encode(document->text()));
        for (const QString& line : document->lines()) {
            EXPECT_LE(print::displayWidth(line), print::kColumns + 1) << line.toStdString();
        }
        return document->text();
    }

    test::TestDevice device_;
};

TEST_F(PaymentDocuments, LookAsApproved) {
    test::expectApproved(text(print::salesInvoice(kDate, u"5001", u"A", Copy::Seller, false)),
                         u"print/approved/invoice-paid.txt"_s);
    test::expectApproved(text(print::collectionSlip(kDate, u"5001", u"A", Copy::Buyer, true)),
                         u"print/approved/collection.txt"_s);

    device_.execute(
        u"UPDATE MTMOK SET Gubun = '입금', MMoney = '0', PMoney = '0', BMoney = '0', YMoney = '0', "
        u"GMoney = '0', YGMoney = '0', InMoney = '-10000', WonMoney = '-10000', CardMoney = '0', "
        u"MisuInMoney = '10000', UnderMoney = '0', YDMoney = '10000', GDMoney = '0', BANKTRANNO = NULL"_s);
    test::expectApproved(text(print::collectionSlip(kDate, u"5001", u"A", Copy::Seller, false)),
                         u"print/approved/collection-alone.txt"_s);

    addSlip(u"단순결제", u"7001", u"T1", u"80000");
    test::expectApproved(text(print::cardReceipt(kDate, u"7001", u"A", exchange(u"T1"_s), false)),
                         u"print/approved/card-receipt.txt"_s);
    device_.execute(u"DELETE FROM GARAE"_s);
    test::expectApproved(text(print::cardReceipt(kDate, u"7001", u"A", std::nullopt, true)),
                         u"print/approved/card-receipt-reprint.txt"_s);
}

TEST_F(PaymentDocuments, ReceiptIsThatOfItsTransaction) {
    addSlip(u"단순결제", u"7001", u"T1", u"80000");
    addSlip(u"단순결제", u"7001", u"T2", u"90000", u"0002");
    const auto receipt = [](QStringView number, const QString& transaction) {
        return text(print::cardReceipt(kDate, number, u"A", exchange(transaction), false));
    };
    EXPECT_TRUE(receipt(u"7001", u"T1"_s).contains(u"거래번호 : T1\n"_s));
    EXPECT_TRUE(receipt(u"7001", u"T2"_s).contains(u"거래번호 : T2\n"_s));
    EXPECT_TRUE(receipt(u"7001", u"T2"_s).contains(u"XXX-XX-XXXX\n"_s)) << "its customer is not known";
    EXPECT_EQ(receipt(u"7001", u"T3"_s), QString());
    EXPECT_EQ(receipt(u"7002", u"T1"_s), QString());
    EXPECT_EQ(receipt(u"7001", u"20240510000123"_s), QString()) << "the approval of another slip";
    EXPECT_EQ(receipt(u"5001", u"20240510000123"_s), QString()) << "no simple payment";
}

TEST_F(PaymentDocuments, InvoiceKeepsToItsCustomer) {
    // Another customer's collection under the slip's number is none of the invoice's business.
    device_.execute(u"UPDATE MTMOK SET GCode = '0002'"_s);
    const QString invoice = text(print::salesInvoice(kDate, u"5001", u"A", Copy::Seller, false));
    EXPECT_TRUE(invoice.contains(u"전미수                  366000원\n"_s)) << invoice.toStdString();
    EXPECT_FALSE(invoice.contains(u"총미수"_s));
}

TEST(CardNumber, ShowsItsEndsOnly) {
    const struct {
        const char16_t* track;
        const char16_t* shown;
    } kCases[] = {
        {u"9410123456789012=29121010000", u"941012******9012"},
        {u";9410123456789012=2912?", u"941012******9012"},
        {u"1234567890123", u"123456***0123"},
        {u"123456789012=1", u"************"},
        {u"12=3456789012345678", u"**"},
        {u"=", u""},
        {u"", u""},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(print::maskedCardNumber(QStringView(c.track)), QString::fromUtf16(c.shown));
    }
}

}  // namespace
