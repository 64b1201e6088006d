#include "db/Transaction.h"

#include <gtest/gtest.h>

#include "db/Query.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace db {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr Statement<u"INSERT INTO MTMOK (JunNo,GName) VALUES ('%s','%s')"> kInsert;
constexpr Statement<u"DELETE MTMOK WHERE JunNo = '%s'"> kDelete;
constexpr Statement<u"SELECT JunNo FROM MTMOK WHERE JunNo = '%s'"> kSelect;

class TransactionTest : public testing::Test {
  protected:
    QString slips() {
        return device.value(u"SELECT group_concat(JunNo) FROM (SELECT JunNo FROM MTMOK ORDER BY JunNo)"_s);
    }

    test::TestDevice device;
};

TEST_F(TransactionTest, AScopeOfReadingSeesOneState) {
    {
        const ReadScope scope;
        EXPECT_FALSE(hasRow(kSelect(u"1")));
        device.insert(u"MTMOK", {{u"JunNo", u"1"}});
        EXPECT_FALSE(hasRow(kSelect(u"1"))) << "what another program wrote in between";
        {
            const ReadScope inner;
            EXPECT_FALSE(hasRow(kSelect(u"1")));
        }
        EXPECT_FALSE(hasRow(kSelect(u"1"))) << "the inner one ends nothing";
    }
    EXPECT_TRUE(hasRow(kSelect(u"1")));
}

// A change must neither wait for the scope's end nor be taken for a part of it.
TEST_F(TransactionTest, AChangeEndsAScopeOfReading) {
    {
        const ReadScope scope;
        EXPECT_FALSE(hasRow(kSelect(u"1")));
        device.insert(u"MTMOK", {{u"JunNo", u"1"}});
        EXPECT_TRUE(execute(kInsert(u"2", u"")));
        EXPECT_EQ(slips(), u"1,2"_s);
        EXPECT_TRUE(hasRow(kSelect(u"1")));
        Transaction transaction;
        EXPECT_TRUE(transaction.run(kInsert(u"3", u"")));
        {
            const ReadScope within;
            EXPECT_TRUE(hasRow(kSelect(u"3")));
        }
        EXPECT_TRUE(transaction.isAlive());
        EXPECT_EQ(slips(), u"1,2"_s);
        EXPECT_TRUE(transaction.commit());
    }
    EXPECT_EQ(slips(), u"1,2,3"_s);
}

}  // namespace
}  // namespace db
