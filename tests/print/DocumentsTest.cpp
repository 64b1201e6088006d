#include <gtest/gtest.h>

#include "books/CollectionSlip.h"
#include "platform/CardNumber.h"
#include "platform/CodePage.h"
#include "print/CardReceipt.h"
#include "print/CollectionReceipt.h"
#include "print/Layout.h"
#include "print/SalesInvoice.h"
#include "support/Approved.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using print::Copy;

constexpr QStringView kDate = u"2024-05-10";

class Documents : public testing::Test {
  protected:
    /// Slip 5001 is not paid yet; 5002 charges 115000 and settles 99000, the balance was 350000.
    Documents() {
        device_.execute(
            uR"(
            INSERT INTO config (sangho, sno, name, tel, juso, calltel) VALUES ('로바나주류(주)', '123-81-45678', '김대표',
                '031-700-1234', '경기도 성남시 분당구 판교역로 235 로바나빌딩', '1588-0000');
            INSERT INTO PDAUSER (userID, userNAME, vatMode, userTEL) VALUES ('A', '홍길동', '1', '010-1111-2222'),
                ('R', '박반올', '3', '010-1111-2222');
            INSERT INTO GARAE (GCODE, GNAME, GUPJU, SNO, CJMONEY, JUSO, TEL) VALUES ('0001', '똠양꿍 하우스', '이사장',
                '220-05-98765', '366000', '서울 마포구 양화로 45', '02-333-4444');
            INSERT INTO PUMMOK (Pcode, Size) VALUES ('1001', '360ml'), ('1002', '500ml'), ('1003', '');
            INSERT INTO MTM SELECT '2024-05-10', '매출', '0001', '똠양꿍 하우스', column1, '미발행', column2, column3, '',
                column4, column5, column6, column7, column8, column9, column10, '09:05' FROM (VALUES
                ('5001', '1001', '참이슬후레쉬', '10', '0', '250000', '25000', '20000', '30000', 'A'),
                ('5001', '1002', '쀍맥주 프리미엄 생드래프트 스페셜', '2', '5', '61005', '6101', '4000', '6650', 'A'),
                ('5001', '1003', '안주모음(대)', '0', '1', '9000', '900', '0', '0', 'A'),
                ('5002', '1001', '참이슬후레쉬', '4', '0', '100000', '10000', '3000', '2000', 'A'),
                ('5003', '9999', '아주아주아주 길어서 종이 너비를 넘는 상품명', '999', '999', '123456789012',
                 '12345678901', '0', '0', 'R'),
                ('5003', '1001', '참이슬후레쉬', '-1', '0', '-25000', '-2500', '-2000', '-3000', 'R')))"_s);
        addPayment(u"매출"_s, u"5002"_s, u"20240510000123"_s);
    }

    void addPayment(const QString& kind, const QString& number, const QString& transaction,
                    const QString& card = u"60000"_s, const QString& customer = u"0001"_s) {
        device_.execute(
            u"INSERT INTO MTMOK VALUES ('2024-05-10', '%1', '%5', '똠양꿍 하우스', '%2', '14:30', 'A', "
            u"'110000', "
            "'100000', '10000', '3000', '2000', '5000', '80000', '20000', '%4', '4000', '20000', '15000', "
            "'700', '', '%3')"_s.arg(kind, number, transaction, card, customer));
    }

    static print::CardExchange exchange(const QString& transaction) {
        return {.reply = {u"0000"_s,
                          u"승인"_s,
                          transaction,
                          u"ID-77"_s,
                          u"0"_s,
                          u"80000"_s,
                          u"0000000500"_s,
                          u"79500"_s,
                          u"1234567"_s,
                          {},
                          {}},
                .maskedCardNumber = platform::maskedCardNumber(u"9410123456789012=2912101")};
    }

    static QString text(const std::optional<print::Document>& document) {
        if (!document) return {};
        EXPECT_TRUE(platform::codepage::encode(document->text()));
        for (const QString& line : document->lines()) {
            EXPECT_LE(print::displayWidth(line), print::kColumns + 1) << line.toStdString();
        }
        return document->text();
    }
    static QString invoice(QStringView number, Copy copy) {
        return text(print::salesInvoice(kDate, number, u"A", copy, false));
    }
    static QString receipt(QStringView number, const QString& transaction) {
        return text(print::cardReceipt(kDate, number, u"A", exchange(transaction), false));
    }

    test::TestDevice device_;
};

TEST_F(Documents, LookAsApproved) {
    test::expectApproved(invoice(u"5001", Copy::Buyer), u"print/approved/invoice.txt"_s);
    // The head is that of every document.
    QString payments =
        test::belowTheHead(invoice(u"5002", Copy::Seller)) +
        test::belowTheHead(text(print::collectionSlip(kDate, u"5002", u"A", Copy::Buyer, true)));
    addPayment(u"단순결제"_s, u"7001"_s, u"T1"_s, u"80000"_s);
    payments += test::belowTheHead(receipt(u"7001", u"T1"_s));
    device_.execute(
        u"UPDATE MTMOK SET Gubun = '입금', MMoney = '0', PMoney = '0', BMoney = '0', YMoney = '0', "
        u"GMoney = '0', YGMoney = '0', InMoney = '-10000', WonMoney = '-10000', CardMoney = '0', "
        u"MisuInMoney = '10000', UnderMoney = '0', YDMoney = '10000', GDMoney = '0', BANKTRANNO = NULL "
        u"WHERE JunNo = '5002'"_s);
    payments += test::belowTheHead(text(print::collectionSlip(kDate, u"5002", u"A", Copy::Seller, false)));
    const QString again = text(print::cardReceipt(kDate, u"7001", u"A", std::nullopt, true));
    EXPECT_TRUE(again.contains(u"* 재발행 *"_s));
    payments += test::belowTheHead(again);
    test::expectApproved(payments, u"print/approved/payments.txt"_s);

    device_.execute(u"DELETE FROM config; DELETE FROM GARAE"_s);
    // Its amounts are wider than the paper.
    test::expectApproved(print::salesInvoice(kDate, u"5003", u"R", Copy::Seller, true)->text(),
                         u"print/approved/invoice-rounded-reprint.txt"_s);
}

TEST_F(Documents, ReceiptIsThatOfItsTransaction) {
    addPayment(u"단순결제"_s, u"7001"_s, u"T1"_s, u"80000"_s);
    addPayment(u"단순결제"_s, u"7001"_s, u"T2"_s, u"90000"_s, u"0002"_s);
    EXPECT_TRUE(receipt(u"7001", u"T1"_s).contains(u"거래번호 : T1\n"_s));
    EXPECT_TRUE(receipt(u"7001", u"T2"_s).contains(u"거래번호 : T2\n"_s));
    EXPECT_TRUE(receipt(u"7001", u"T2"_s).contains(u"XXX-XX-XXXX\n"_s)) << "its customer is not known";
    EXPECT_EQ(receipt(u"7001", u"T3"_s), QString());
    EXPECT_EQ(receipt(u"7002", u"T1"_s), QString());
    EXPECT_EQ(receipt(u"7001", u"20240510000123"_s), QString()) << "the approval of another slip";
    EXPECT_EQ(receipt(u"5002", u"20240510000123"_s), QString()) << "no simple payment";
    // Without its sale it is the host's, under the number and customer of the row.
    const auto host = [](const QString& transaction) {
        return text(print::hostReceipt(u"2024-05-12", u"R", exchange(transaction)));
    };
    for (const QString& known : {u"거래일시   2024-05-10 14:30\n"_s, u"전표번호   5002\n"_s,
                                 u"담당사원   홍길동 010-1111-2222\n"_s, u"사업자번호 220-05-98765\n"_s}) {
        EXPECT_TRUE(host(u"20240510000123"_s).contains(known)) << known.toStdString();
    }
    EXPECT_TRUE(host(u"T3"_s).contains(u"거래일시   2024-05-12\n"_s) &&
                host(u"T3"_s).contains(u"상호       XXXX\n"_s))
        << host(u"T3"_s).toStdString();
}

TEST_F(Documents, ThePreviousReceivableIsTheCustomersWithoutTheSlipsOwnCollection) {
    const auto previous = [](QStringView number) {
        return books::previousReceivable(u"0001", kDate, number, u"A").value();
    };
    EXPECT_EQ(previous(u"5001"), 366000);
    EXPECT_EQ(previous(u"5002"), 350000);
    EXPECT_EQ(books::previousReceivable(u"9999", kDate, u"5009", u"A").value(), 0);
    // Another customer's collection under the slip's number is none of the invoice's business.
    device_.execute(u"UPDATE MTMOK SET GCode = '0002'"_s);
    const QString paper = invoice(u"5002", Copy::Seller);
    EXPECT_TRUE(paper.contains(u"전미수                  366000원\n"_s)) << paper.toStdString();
    EXPECT_FALSE(paper.contains(u"총미수"_s));
}

TEST(CardNumber, ShowsItsEndsOnly) {
    const std::pair<QStringView, QStringView> cases[] = {
        {u"9410123456789012=29121010000", u"941012******9012"},
        {u";9410123456789012=2912?", u"941012******9012"},
        {u"1234567890123", u"123456***0123"},
        {u"123456789012=1", u"************"},
        {u"12=3456789012345678", u"**"},
        {u"=", u""},
        {u"", u""}};
    for (const auto& [track, shown] : cases) EXPECT_EQ(platform::maskedCardNumber(track), shown);
}

}  // namespace
