#include <gtest/gtest.h>

#include "db/Query.h"
#include "support/RecordedTraces.h"
#include "support/TestDevice.h"

namespace db {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(RecordsetTest, NoPasswordOpensTheDoorByItsQuotes) {
    test::TestDevice device;
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
