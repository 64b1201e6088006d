#include <gtest/gtest.h>

#include "db/Query.h"
#include "db/VOConnection.h"
#include "db/VORecordset.h"
#include "platform/adoce/DatabaseFile.h"
#include "support/PrintQt.h"
#include "support/RecordedTraces.h"
#include "support/TestDevice.h"

namespace db {
namespace {

using namespace Qt::Literals::StringLiterals;
namespace adoce = platform::adoce;

constexpr Statement<u"SELECT GCODE, GName, UserID FROM GARAE WHERE GCode >= '%s' ORDER BY GCode"> kCustomers;
constexpr Statement<u"SELECT DTime, PCode FROM MTM"> kOrders;
constexpr Statement<u"INSERT INTO GARAE (GCODE,GNAME) VALUES ('%s','%s')"> kInsert;
constexpr Statement<u"INSERT INTO NOTABLE (GCODE) VALUES ('%s')"> kBadInsert;
constexpr Statement<u"SELECT * FROM NOTABLE"> kBadSelect;

class RecordsetTest : public testing::Test {
  protected:
    RecordsetTest() {
        device.insert(u"GARAE", {{u"GCODE", u"0001"}, {u"GNAME", u"서울상회"}, {u"USERID", u"7"}});
        device.insert(u"GARAE", {{u"GCODE", u"0002"}, {u"GNAME", u"부산상회"}});
    }

    test::TestDevice device;
    CVOConnection connection{0};
};

TEST_F(RecordsetTest, ExecuteIsAlwaysOneAndSilent) {
    openDatabase(connection);
    EXPECT_EQ(connection.Execute(kInsert(u"0003", u"인천상회")), 1);
    EXPECT_EQ(connection.Execute(kBadInsert(u"0004")), 1);
    EXPECT_EQ(connection.Execute(kInsert(u"0005", u"O'Hara")), 1);
    EXPECT_EQ(connection.Execute(kInsert(u"0006", u"O''Hara")), 1);
    EXPECT_EQ(device.value(u"SELECT group_concat(GCODE) FROM GARAE"_s), u"0001,0002,0003"_s);
}

TEST_F(RecordsetTest, NoPasswordOpensTheDoorByItsQuotes) {
    constexpr Statement<u"SELECT *  FROM PDAUSER WHERE userID = '%s' AND userPASS = '%s' "> kLogin;
    device.insert(u"PDAUSER", {{u"userID", u"7"}, {u"userPASS", u"1234"}, {u"userNAME", u"김"}});
    EXPECT_TRUE(hasRow(kLogin(u"7", u"1234")));
    test::RecordedTraces traces;
    for (const QStringView attempt : {u"' OR '1'='1", u"' OR ''='", u"1234' OR userID='7", u"' OR 1=1 --",
                                      u"'' OR ''1''=''1", u"'; DELETE PDAUSER --", u"1234'", u"'", u"''"}) {
        EXPECT_FALSE(hasRow(kLogin(u"7", attempt))) << attempt.toUtf8().constData();
        EXPECT_FALSE(hasRow(kLogin(attempt, u"1234"))) << attempt.toUtf8().constData();
        const QStringList told = traces.take();
        EXPECT_EQ(told.size(), 2);
        for (const QString& text : told)
            EXPECT_FALSE(text.contains(attempt.toString() + u"'"_s)) << text.toStdString();
    }
    EXPECT_FALSE(hasRow(kLogin(u"7", u"")));
    EXPECT_TRUE(hasRow(kLogin(u"7", u"1234")));
}

}  // namespace
}  // namespace db
