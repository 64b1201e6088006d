#include <gtest/gtest.h>

#include <QStringList>

#include "sales/CustomerQuery.h"
#include "sales/ProductQuery.h"
#include "support/TestDevice.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;
using platform::Won;

namespace {

/// The first column, so that a case names the rows that it wants in one line.
QString codes(const db::Rows& rows) {
    QStringList codes;
    for (int row = 0; row < rows.count(); ++row) codes << rows.at(row, 0);
    return codes.join(u' ');
}

TEST(Customers, AreListedByKeyAndSalesman) {
    test::TestDevice device;
    const struct {
        QStringView code, name, seek, user;
    } kCustomers[] = {
        {u"0001", u"가나상회", u"ㄱ", u"kim"}, {u"0002", u"고려주점", u"ㄱ", u"lee"},
        {u"0003", u"강남식당", u"ㄱ", u"kim"}, {u"0004", u"나라", u"ㄴ", u"kim"},
        {u"0005", u"7080", u"00", u"kim"},
    };
    for (const auto& c : kCustomers) {
        device.insert(u"GARAE", {{u"GCODE", c.code},
                                 {u"GNAME", c.name},
                                 {u"ENDDATE", u"2024-05-01"},
                                 {u"SEEK", c.seek},
                                 {u"USERID", c.user}});
    }
    const struct {
        QStringView seek, user;
        bool ownOnly;
        QStringView wanted;
    } kCases[] = {
        {u"ㄱ", u"kim", true, u"0003 0001"}, {u"ㄱ", u"kim", false, u"0002 0003 0001"},
        {u"ㄱ", u"park", true, u""},         {u"00", u"kim", true, u"0005"},
        {u"ㅎ", u"kim", false, u""},         {u"", u"kim", false, u""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.wanted.toUtf8().toStdString());
        EXPECT_EQ(codes(customers(c.seek, c.user, c.ownOnly)), c.wanted.toString());
    }
    EXPECT_EQ(customers(u"ㄴ", u"kim", true).cells, (QStringList{u"0004"_s, u"나라"_s, u"2024-05-01"_s}));
}

TEST(Customers, GiveTheirAccount) {
    test::TestDevice device;
    device.insert(u"GARAE", {{u"GCODE", u"0001"},
                             {u"TEL", u"02-123-4567"},
                             {u"MAJIN", u"15"},
                             {u"TTMONEY", u"77"},
                             {u"CJMONEY", u"-120000"},
                             {u"GUBUN", u"일반"}});
    const auto footer = customerFooter(u"0001");
    ASSERT_TRUE(footer);
    EXPECT_EQ(footer->tel, u"02-123-4567"_s);
    EXPECT_EQ(footer->Majin, u"15"_s);
    EXPECT_EQ(footer->CJMoney, Won(-120000));
    EXPECT_FALSE(customerFooter(u"0002"));

    const CustomerAccount account = customerAccount(u"0001");
    EXPECT_EQ(account.CJMoney, Won(-120000));
    EXPECT_EQ(account.Gubun, u"일반"_s);
    const CustomerAccount unknown = customerAccount(u"0002");
    EXPECT_TRUE(unknown.CJMoney.isZero());
    EXPECT_TRUE(unknown.Gubun.isEmpty());
}

class ProductsTest : public testing::Test {
  protected:
    ProductsTest() {
        const struct {
            QStringView code, name, use, productClass, seek, withdrawn;
        } kProducts[] = {
            {u"0001", u"가평", u"일반", u"10", u"ㄱ", u""},  {u"0002", u"국화", u"유흥", u"10", u"ㄱ", u"N"},
            {u"0003", u"금주", u"공용", u"20", u"ㄱ", u""},  {u"0004", u"고량", u"일반", u"20", u"ㄱ", u"Y"},
            {u"0005", u"나주", u"유흥", u"20", u"ㄴ", u"Z"},
        };
        for (const auto& p : kProducts) {
            device.insert(u"PUMMOK", {{u"Pcode", p.code},
                                      {u"Pname", p.name},
                                      {u"Size", u"360"},
                                      {u"Gubun", p.use},
                                      {u"JGubun", p.productClass},
                                      {u"seek", p.seek},
                                      {u"TTT", p.withdrawn}});
        }
        device.execute(u"UPDATE PUMMOK SET TTT = NULL WHERE Pcode = '0001'"_s);
    }
    test::TestDevice device;
};

TEST_F(ProductsTest, AreFoundByKeyClassAndKindOfCustomer) {
    const struct {
        QStringView seek, productClass, kind, wanted;
    } kCases[] = {
        // By key, names descending.
        {u"ㄱ", u"", u"공용", u"0003 0002 0001"},
        {u"ㄱ", u"", u"일반", u"0003 0001"},
        {u"ㄱ", u"", u"유흥", u"0003 0002"},
        {u"ㄱ", u"", u"", u"0003 0002"},
        {u"ㄱ", u"10", u"공용", u"0002 0001"},
        {u"ㄱ", u"10", u"일반", u"0001"},
        {u"ㄱ", u"10", u"유흥", u"0002"},
        // By class, codes descending.
        {u"", u"20", u"공용", u"0005 0003"},
        {u"", u"20", u"일반", u"0003"},
        {u"", u"10", u"유흥", u"0002"},
        {u"", u"", u"공용", u"0005 0003 0002 0001"},
        {u"", u"", u"일반", u"0003 0001"},
        {u"", u"", u"유흥", u"0005 0003 0002"},
        {u"ㅎ", u"", u"공용", u""},
        {u"", u"99", u"일반", u""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << "seek '" << c.seek.toUtf8().toStdString() << "' class '"
                                        << c.productClass.toUtf8().toStdString() << "' kind '"
                                        << c.kind.toUtf8().toStdString() << "'");
        EXPECT_EQ(codes(products(c.seek, c.productClass, c.kind)), c.wanted.toString());
    }
    EXPECT_EQ(products(u"ㄱ", u"10", u"일반").cells,
              (QStringList{u"0001"_s, u"가평"_s, u"360"_s, u"일반"_s}));
}

TEST_F(ProductsTest, FrequentOnesComeMostUsedFirst) {
    const struct {
        QStringView code, use, count;
    } kFrequent[] = {{u"0001", u"일반", u"3"}, {u"0004", u"일반", u"9"}, {u"0005", u"유흥", u"5"}};
    for (const auto& p : kFrequent) {
        device.insert(u"MPUMMOK", {{u"PCode", p.code}, {u"Gubun", p.use}, {u"AUTOCNT", p.count}});
    }
    // 0004 is withdrawn and stays on this list.
    EXPECT_EQ(codes(frequentProducts(u"공용")), u"0004 0005 0001"_s);
    EXPECT_EQ(codes(frequentProducts(u"일반")), u"0004 0001"_s);
    EXPECT_EQ(codes(frequentProducts(u"유흥")), u"0005"_s);
}

TEST_F(ProductsTest, AreLookedUpByCode) {
    EXPECT_TRUE(productExists(u"0004"));
    EXPECT_FALSE(productExists(u"4"));
    EXPECT_EQ(productClass(u"0003"), u"20"_s);
    EXPECT_EQ(productClass(u"9999"), QString());
    const auto name = productName(u"0003");
    ASSERT_TRUE(name);
    EXPECT_EQ(name->Pname, u"금주"_s);
    EXPECT_EQ(name->JGubun, u"20"_s);
    EXPECT_FALSE(productName(u"9999"));
}

TEST_F(ProductsTest, ClassesAreOrderedByCode) {
    device.insert(u"JGUBUN", {{u"CODE", u"20"}, {u"NAME", u"맥주"}});
    device.insert(u"JGUBUN", {{u"CODE", u"10"}, {u"NAME", u"소주"}});
    const QList<ProductClass> classes = productClasses();
    ASSERT_EQ(classes.size(), 2);
    EXPECT_EQ(classes[0].code + classes[0].name, u"10소주"_s);
    EXPECT_EQ(classes[1].code + classes[1].name, u"20맥주"_s);
}

}  // namespace
}  // namespace sales
