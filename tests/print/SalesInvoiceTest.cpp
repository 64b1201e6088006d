#include "print/SalesInvoice.h"

#include <gtest/gtest.h>

#include "app/CollectionSlip.h"
#include "platform/termdev/PaperRoll.h"
#include "platform/termdev/TermDev.h"
#include "print/PrintJob.h"
#include "support/Approved.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using print::Copy;

constexpr QStringView kDate = u"2024-05-10";

class SalesInvoice : public testing::Test {
  protected:
    SalesInvoice() {
        platform::termdev::setPrinter(nullptr);
        device_.insert(u"config", {{u"sangho", u"로바나주류(주)"},
                                   {u"sno", u"123-81-45678"},
                                   {u"name", u"김대표"},
                                   {u"tel", u"031-700-1234"},
                                   {u"juso", u"경기도 성남시 분당구 판교역로 235 로바나빌딩"},
                                   {u"calltel", u"1588-0000"}});
        addUser(u"A", u"홍길동", u"1");
        device_.insert(u"GARAE", {{u"GCODE", u"0001"},
                                  {u"GNAME", u"똠양꿍 하우스"},
                                  {u"GUPJU", u"이사장"},
                                  {u"SNO", u"220-05-98765"},
                                  {u"CJMONEY", u"350000"},
                                  {u"JUSO", u"서울 마포구 양화로 45"},
                                  {u"TEL", u"02-333-4444"}});
        addProduct(u"1001", u"360ml");
        addProduct(u"1002", u"500ml");
        addProduct(u"1003", u"");
        addLine(u"5001", u"1001", u"참이슬후레쉬", u"10", u"0", u"250000", u"25000", u"20000", u"30000");
        addLine(u"5001", u"1002", u"쀍맥주 프리미엄 생드래프트 스페셜", u"2", u"5", u"61005", u"6101",
                u"4000", u"6650");
        addLine(u"5001", u"1003", u"안주모음(대)", u"0", u"1", u"9000", u"900", u"0", u"0");
    }

    void addUser(QStringView id, QStringView name, QStringView vatMode) {
        device_.insert(u"PDAUSER", {{u"userID", id},
                                    {u"userPASS", u"0000"},
                                    {u"userNAME", name},
                                    {u"vatMode", vatMode},
                                    {u"userTEL", u"010-1111-2222"}});
    }

    void addProduct(QStringView code, QStringView size) {
        device_.insert(u"PUMMOK", {{u"Pcode", code}, {u"Size", size}});
    }

    void addLine(QStringView junNo, QStringView pCode, QStringView pName, QStringView box, QStringView bon,
                 QStringView supply, QStringView vat, QStringView crate, QStringView bottle,
                 QStringView user = u"A") {
        device_.insert(u"MTM", {{u"DDate", kDate},
                                {u"Gubun", u"매출"},
                                {u"GCode", u"0001"},
                                {u"GName", u"똠양꿍 하우스"},
                                {u"JunNo", junNo},
                                {u"WorkGubun", u"미발행"},
                                {u"PCode", pCode},
                                {u"PName", pName},
                                {u"Box", box},
                                {u"Bon", bon},
                                {u"MMoney", supply},
                                {u"BMoney", vat},
                                {u"YMoney", crate},
                                {u"GMoney", bottle},
                                {u"UserID", user},
                                {u"DTime", u"09:05"}});
    }

    /// What is on the paper after printing the slip.
    QString paper(QStringView junNo, Copy copy, bool reprint, QStringView user = u"A") {
        platform::termdev::resetRoll();
        if (const auto document = print::salesInvoice(kDate, junNo, user, copy, reprint)) {
            print::printDocument(*document);
        }
        return platform::termdev::rollText();
    }

    test::TestDevice device_;
};

TEST_F(SalesInvoice, LooksAsApproved) {
    test::expectApproved(paper(u"5001", Copy::Buyer, false), u"print/approved/invoice.txt"_s);
}

TEST_F(SalesInvoice, RoundedReprintWithoutParticularsLooksAsApproved) {
    device_.execute(u"DELETE FROM config"_s);
    device_.execute(u"DELETE FROM GARAE"_s);
    addUser(u"R", u"박반올", u"3");
    addLine(u"5002", u"9999", u"아주아주아주 길어서 종이 너비를 넘는 상품명", u"999", u"999", u"123456789012",
            u"12345678901", u"0", u"0", u"R");
    addLine(u"5002", u"1001", u"참이슬후레쉬", u"-1", u"0", u"-25000", u"-2500", u"-2000", u"-3000", u"R");
    test::expectApproved(paper(u"5002", Copy::Seller, true, u"R"),
                         u"print/approved/invoice-rounded-reprint.txt"_s);
}

TEST_F(SalesInvoice, PreviousReceivableLeavesTheSlipsOwnCollectionOut) {
    const auto previous = [] { return app::previousReceivable(u"0001", kDate, u"5001", u"A").value(); };
    EXPECT_EQ(previous(), 350000);
    // The collection of 5001 charged 352006 + 60650 and settled 300000, 10000 and 50000; CJMoney has moved.
    device_.insert(u"MTMOK", {{u"DDate", kDate},
                              {u"GCode", u"0001"},
                              {u"JunNo", u"5001"},
                              {u"UserID", u"A"},
                              {u"MMoney", u"352006"},
                              {u"YGMoney", u"60650"},
                              {u"InMoney", u"300000"},
                              {u"MisuInMoney", u"10000"},
                              {u"YDMoney", u"50000"}});
    device_.execute(u"UPDATE GARAE SET CJMONEY = '402656'"_s);
    EXPECT_EQ(previous(), 350000);
    EXPECT_EQ(app::previousReceivable(u"9999", kDate, u"5009", u"A").value(), 0);
}

}  // namespace
