#include "print/SlipPapers.h"

#include <gtest/gtest.h>

#include "books/CollectionSlip.h"
#include "platform/CodePage.h"
#include "platform/termdev/TermDev.h"
#include "print/Layout.h"
#include "sales/SlipStore.h"
#include "support/Approved.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using books::Copy;
using books::Paper;

constexpr QStringView kDate = u"2024-05-10";

class SlipPapers : public testing::Test {
  protected:
    SlipPapers() {
        platform::termdev::setPrinter(nullptr);
        device_.insert(u"config", {{u"sangho", u"똠방각하와 쀍쀍한 친구들 종합주류 주식회사"},
                                   {u"sno", u"123-81-45678"},
                                   {u"juso", u"경기도 성남시 분당구 판교역로 235 로바나빌딩"}});
        device_.insert(u"GARAE", {{u"GCODE", u"0001"}, {u"CJMONEY", u"123456789012"}});
    }

    /// Slip 5001 of the user: names of every length around the paper's 32 columns, and one figure everywhere.
    void addSlip(const QString& user, int lines, const QString& count, const QString& won) {
        QString rows =
            uR"(
            DELETE FROM PUMMOK;
            INSERT INTO PUMMOK (Pcode, Pname, Size, BoxBonEa, TTT)
                WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < $lines)
                SELECT 1000 + i, '쀍' || substr('맥맥맥맥맥맥맥맥맥맥맥맥맥맥맥', 1, 12 + i / 2) || substr(' a', i % 2 * 9),
                    '640ml', '20', 'Y' FROM n;
            INSERT INTO MTM SELECT '2024-05-10', '매출', '0001', '펲시똠방각하쀍노래주점 강남역11번출구점', '5001',
                '미발행', Pcode, Pname, '', $count, $count, $won, $won, $won, $won, '$user', '' FROM PUMMOK;
            INSERT INTO YTM SELECT DDate, GCode, GName, JunNo, PCode, PName, $count, $count, $count, $won, $won,
                $won, $won, UserID FROM MTM WHERE UserID = '$user';
            INSERT INTO MTMOK SELECT DISTINCT DDate, Gubun, GCode, GName, JunNo, '', UserID, $won, $won, 0, 0, $won,
                $won, $won, $won, $won, $won, $won, $won, 0, '', 'T1' FROM MTM WHERE UserID = '$user')"_s;
        rows.replace(u"$lines"_s, QString::number(lines)).replace(u"$count"_s, count);
        device_.execute(rows.replace(u"$won"_s, won).replace(u"$user"_s, user));
    }

    /// The copies that are reprints, such as "거래명세서공급자용".
    static QString reprints(QStringView user = u"A") {
        QStringList found;
        for (const Paper paper : books::kPapers) {
            for (const Copy copy : {Copy::Seller, Copy::Buyer}) {
                if (!print::isReprint(paper, copy, kDate, u"5001", user)) continue;
                found << books::paperName(paper).toString() + books::copyName(copy).toString();
            }
        }
        return found.join(u' ');
    }

    QString states() {
        return device_.value(
            u"SELECT group_concat(s, ' ') FROM (SELECT DISTINCT UserID || WorkGubun AS s FROM MTM ORDER BY 1)"_s);
    }

    test::TestDevice device_;
};

TEST_F(SlipPapers, WithNamesAroundThePapersWidthLookAsApproved) {
    addSlip(u"A"_s, 6, u"7"_s, u"12345"_s);
    QString papers;
    for (const Paper paper : books::kPapers) {
        const auto document = print::slipPaper(paper, kDate, u"5001", u"A", Copy::Buyer, false);
        ASSERT_TRUE(document);
        EXPECT_TRUE(platform::codepage::encode(document->text()));
        for (const QString& line : document->lines())
            EXPECT_LE(print::displayWidth(line), print::kColumns + 1) << line.toStdString();
        // The head is the same on all of them.
        papers += papers.isEmpty() ? document->text() : test::belowTheHead(document->text());
    }
    test::expectApproved(papers, u"print/approved/odd-names.txt"_s);
}

TEST_F(SlipPapers, AreReprintsUntilTheirSlipChanges) {
    addSlip(u"A"_s, 2, u"1"_s, u"1000"_s);
    addSlip(u"B"_s, 1, u"1"_s, u"1000"_s);
    EXPECT_EQ(reprints(), QString());
    const auto printAll = [](Copy copy) {
        return print::SlipPapers(kDate, u"5001", u"A").print(books::kPapers, copy).size();
    };
    EXPECT_EQ(printAll(Copy::Seller), 3);
    EXPECT_EQ(reprints(), u"거래명세서공급자용 용공인수증공급자용 입금표공급자용"_s);
    EXPECT_EQ(reprints(u"B"), QString());
    EXPECT_EQ(states(), u"A발행 B미발행"_s);
    EXPECT_EQ(printAll(Copy::Buyer), 3);

    // Saved as it was, the collection slip stays printed; saved otherwise, it alone is a first print again.
    auto collection = *books::loadCollection(kDate, u"5001", u"A");
    ASSERT_TRUE(books::saveCollection(collection));
    EXPECT_TRUE(reprints().endsWith(u"입금표공급자용 입금표공급받는자용"_s));
    collection.WonMoney += platform::Won(1);
    ASSERT_TRUE(books::saveCollection(collection));
    EXPECT_EQ(reprints(),
              u"거래명세서공급자용 거래명세서공급받는자용 용공인수증공급자용 용공인수증공급받는자용"_s);

    // No print takes a slip back from "결제".
    device_.execute(u"UPDATE MTM SET WorkGubun = '결제' WHERE UserID = 'A'"_s);
    printAll(Copy::Seller);
    EXPECT_EQ(states(), u"A결제 B미발행"_s);

    device_.execute(u"INSERT INTO TEMP (GCode, PCode) VALUES ('0001', '1001')"_s);
    ASSERT_EQ(sales::saveSlip(u"A", kDate, u"5001"), sales::SaveOutcome::Saved);
    EXPECT_FALSE(reprints().contains(u"거래명세서"_s));
    printAll(Copy::Seller);
    print::SlipPapers(kDate, u"5001", u"B").print(books::kPapers, Copy::Seller);
    ASSERT_TRUE(sales::deleteSlip(kDate, u"5001", true, u"A"));
    EXPECT_EQ(device_.value(u"SELECT COUNT(*) FROM PRINTLOG"_s), u"0"_s)
        << "the other user's go with the slip";
    EXPECT_EQ(printAll(Copy::Seller), 0);
}

TEST_F(SlipPapers, SayWhatOneCosts) {
    const auto price = [&](const QString& box, const QString& bottles, const QString& supply) {
        device_.execute(u"DELETE FROM MTM"_s);
        device_.execute(
            u"INSERT INTO MTM (DDate, JunNo, UserID, GCode, PCode, PName, Box, Bon, MMoney) VALUES "
            "('2024-05-10', '5001', 'A', '0001', '1', '소주', '%1', '%2', '%3')"_s.arg(box, bottles, supply));
        const auto invoice = print::slipPaper(Paper::Invoice, kDate, u"5001", u"A", Copy::Seller, false);
        const QString line = invoice->lines().filter(u"소주"_s).value(0).trimmed();
        return line.mid(line.lastIndexOf(u"  "_s)).trimmed();
    };
    device_.insert(u"PUMMOK",
                   {{u"Pcode", u"1"}, {u"Size", u"1L"}, {u"BBoxMMoney", u"20000"}, {u"BBonMMoney", u"1100"}});
    EXPECT_EQ(price(u"-2"_s, u"0"_s, u"-50000"_s), u"1L 25000/상자"_s) << "as it was keyed";
    EXPECT_EQ(price(u"2"_s, u"3"_s, u"43300"_s), u"1L 20000/상자 1100/본"_s);
    for (const auto& [box, supply] : {std::pair(u"3"_s, u"10000"_s), {u"0"_s, u"0"_s}})
        EXPECT_EQ(price(box, u"0"_s, supply), u"1L"_s);
    EXPECT_EQ(price(u"2"_s, u"3"_s, u"43301"_s), u"1L"_s) << "no price comes to it";
    device_.insert(u"GARAEDANGA",
                   {{u"gcode", u"0001"}, {u"pcode", u"1"}, {u"boxmoney", u"20002"}, {u"bonmoney", u"1099"}});
    EXPECT_EQ(price(u"2"_s, u"3"_s, u"43301"_s), u"1L 20002/상자 1099/본"_s);
}

}  // namespace
