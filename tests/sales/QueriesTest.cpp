#include <gtest/gtest.h>

#include <QStringList>

#include "sales/CustomerQuery.h"
#include "sales/ProductQuery.h"
#include "support/TestDevice.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;

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
        EXPECT_EQ(codes(customers(c.seek, c.user, c.ownOnly)), c.wanted.toString());
    }
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
        // By class, codes descending.
        {u"", u"20", u"공용", u"0005 0003"},
        {u"", u"20", u"일반", u"0003"},
        {u"", u"", u"공용", u"0005 0003 0002 0001"},
        {u"", u"", u"유흥", u"0005 0003 0002"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(codes(products(c.seek, c.productClass, c.kind)), c.wanted.toString())
            << c.seek.toUtf8().constData() << c.productClass.toUtf8().constData()
            << c.kind.toUtf8().constData();
    }
}

}  // namespace
}  // namespace sales
