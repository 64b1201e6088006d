#include <gtest/gtest.h>

#include <QStringList>

#include "db/Query.h"
#include "platform/Device.h"
#include "platform/adoce/DatabaseFile.h"
#include "sales/CustomerQuery.h"
#include "sales/ProductQuery.h"
#include "support/TestDevice.h"

namespace sales {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The first column, so that a case names the rows that it wants in one line.
QString codes(const platform::Rows& rows) {
    QStringList codes;
    for (int row = 0; row < rows.count(); ++row) codes << rows.at(row, 0);
    return codes.join(u' ');
}

TEST(Customers, AreListedByKeyAndSalesman) {
    test::TestDevice device;
    device.execute(
        uR"(
        INSERT INTO GARAE (GCODE, GNAME, SEEK, USERID, ENDDATE) SELECT *, '2024-05-01' FROM (VALUES
            ('0001', '가나상회', 'ㄱ', 'kim'), ('0002', '고려주점', 'ㄱ', 'lee'), ('0003', '강남식당', 'ㄱ', 'kim'),
            ('0004', '나라', 'ㄴ', 'kim'), ('0005', '7080', '00', 'kim')))"_s);
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
        EXPECT_EQ(codes(platform::readAll(customers(c.seek, c.user, c.ownOnly))), c.wanted.toString());
    }
}

TEST(Products, AreFoundByKeyClassAndKindOfCustomer) {
    test::TestDevice device;
    device.execute(
        uR"(
        INSERT INTO PUMMOK (Pcode, Pname, Gubun, JGubun, seek, TTT) VALUES ('0001', '가평', '일반', '10', 'ㄱ', NULL),
            ('0002', '국화', '유흥', '10', 'ㄱ', 'N'), ('0003', '금주', '공용', '20', 'ㄱ', ''),
            ('0004', '고량', '일반', '20', 'ㄱ', 'Y'), ('0005', '나주', '유흥', '20', 'ㄴ', 'Z'))"_s);
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
        EXPECT_EQ(codes(platform::readAll(products(c.seek, c.productClass, c.kind))), c.wanted.toString())
            << c.seek.toUtf8().constData() << c.productClass.toUtf8().constData()
            << c.kind.toUtf8().constData();
    }
}

TEST(Products, AreReadInPiecesAsTheyStoodBeforeAChange) {
    test::TestDevice device;
    device.execute(
        u"WITH RECURSIVE N(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM N WHERE n < 500) "
        u"INSERT INTO PUMMOK (Pcode) SELECT n FROM N"_s);
    for (const bool isChanged : {false, true}) {
        const platform::RowSource source = products(u"", u"", u"공용");
        platform::Rows rows;
        EXPECT_TRUE(source(&rows));
        EXPECT_LT(rows.count(), 500);
        // Twice: the second change finds nothing left to read.
        for (int change = 0; isChanged && change < 2; ++change)
            EXPECT_TRUE(db::execute(db::Statement<u"DELETE PUMMOK">()()));
        while (source(&rows)) {
        }
        EXPECT_EQ(rows.count(), 500);
        EXPECT_TRUE(rows.isComplete);
    }
    device.execute(u"DROP TABLE PUMMOK"_s);
    EXPECT_FALSE(platform::readAll(products(u"", u"", u"공용")).isComplete);
}

TEST(Products, HaveEachPageFetchedOnceInWhateverOrder) {
    test::TestDevice device;
    device.execute(
        u"WITH RECURSIVE N(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM N WHERE n < 20000) "
        u"INSERT INTO PUMMOK (Pcode, Pname, Size, seek) "
        u"SELECT n, n * 7919 % 20000, printf('%0200d', n), 'ㄱ' FROM N"_s);
    QString error;
    auto& file =
        platform::adoce::DatabaseFile::shared(platform::device::path(platform::device::kDatabaseFile), &error)
            ->sqlite();
    const int before = file.pagesFetched();
    const platform::RowSource source = products(u"ㄱ", u"", u"공용");
    EXPECT_EQ(platform::readAll(source).count(), 20000);
    EXPECT_LT(file.pagesFetched() - before, 3000);
    // What was read holds no room, even before its source goes.
    EXPECT_EQ(file.rows(u"PRAGMA cache_size"_s)->value(0).value(0), u"-2000"_s);
}

TEST(Products, StandMostUsedFirst) {
    test::TestDevice device;
    device.execute(
        uR"(
        INSERT INTO MPUMMOK (PCode, Gubun, AUTOCNT) VALUES ('1', '공용', '95'), ('2', '유흥', '1002'), ('3', '일반', '943'),
            ('4', '공용', ''), ('5', '공용', '943'), ('6', '공용', 'x'), ('7', '공용', '10000000000'))"_s);
    EXPECT_EQ(codes(frequentProducts(u"공용")), u"7 2 3 5 1 6 4"_s);
    EXPECT_EQ(codes(frequentProducts(u"일반")), u"7 3 5 1 6 4"_s);
}

}  // namespace
}  // namespace sales
