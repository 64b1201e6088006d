#include "app/Login.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "app/ClockCheck.h"
#include "app/DeviceProblem.h"
#include "app/LoginWait.h"
#include "app/Session.h"
#include "platform/Wipe.h"
#include "support/FullDisk.h"
#include "support/MemorySearch.h"
#include "support/PrintQt.h"
#include "support/TestDevice.h"

namespace {

using namespace Qt::Literals::StringLiterals;

// Refused, so that the user's row, which is read from the database, is not what is found.
TEST(Login, LeavesNoPasswordInMemory) {
    if (!test::kCanSearchMemory) GTEST_SKIP();
    test::TestDevice device;
    device.execute(u"INSERT INTO PDAUSER (userID,userPASS) VALUES ('A','1111')"_s);
    {
        const platform::SecureText entered = test::kRarePassword.make();
        QString password(entered.view().data(), entered.size());
        EXPECT_FALSE(test::kRarePassword.places().empty()) << "the search finds what is there";
        EXPECT_FALSE(app::logIn(u"A"_s, password, u"2026-11-21"_s));
        platform::wipe(&password);
    }
    EXPECT_EQ(test::kRarePassword.places(), std::vector<std::string>());
}

TEST(Login, TakesAnIdInEitherCaseWhileOneUserIsMeant) {
    test::TestDevice device;
    device.execute(
        u"INSERT INTO PDAUSER (userID,userPASS) VALUES ('B','1'), ('c','1'), ('D','1'), ('d','2')"_s);
    QStringList known;
    for (const QString& keyed : {u"b"_s, u"C"_s, u"d"_s, u"D"_s, u"e"_s, QString()})
        known << app::knownUserId(keyed);
    EXPECT_EQ(known, (QStringList{u"B"_s, u"c"_s, u"d"_s, u"D"_s, u"e"_s, QString()}));
}

TEST(LoginWait, GrowsToTenSecondsAndOutlivesTheProgram) {
    using namespace std::chrono_literals;
    test::TestDevice device;
    const std::chrono::milliseconds waits[] = {0s, 0s, 0s, 1s, 2s, 4s, 8s, 10s, 10s};
    for (std::size_t i = 0; i < std::size(waits); ++i) {
        EXPECT_EQ(app::enterLoginTry(), waits[i]) << i;
        // Another folder in between takes what the process remembers; only the file is left.
        if (i % 2 == 0) {
            const test::TestDevice another;
            EXPECT_EQ(app::enterLoginTry(), 0s) << "of another terminal";
        }
    }
    app::loginSucceeded();
    EXPECT_EQ(app::enterLoginTry(), 0s);
    // Where the file cannot be kept the process counts on.
    const QString file = device.folder() + u"/login-failures"_s;
    ASSERT_TRUE(QFile::remove(file) && QDir().mkdir(file));
    for (int i = 0; i < 2; ++i) EXPECT_EQ(app::enterLoginTry(), 0s);
    EXPECT_EQ(app::enterLoginTry(), 1s);
}

TEST(ClockCheck, DoubtsAClockBeforeTheLastSlip) {
    test::TestDevice device;
    device.execute(
        u"INSERT INTO MTM (DDate, DTime) VALUES ('2026-11-21', '10:30'), ('2026-11-20', '23:00'), "
        "('2026-11-22', NULL); INSERT INTO MTMOK (DDate, DTime) VALUES ('2026-11-21', '09:00')"_s);
    EXPECT_EQ(app::newestSlip(), u"2026-11-21 10:30"_s);
    EXPECT_EQ(app::clockProblem(u"2026-11-21", {{2026, 11, 21}, {10, 30}}, app::newestSlip()), QString());
}

TEST(DeviceProblem, TellsOfADiskThatTakesNoSlip) {
    const test::TestDevice device;
    EXPECT_EQ(app::deviceProblem(), QString());
    const test::FullDisk full(4096);
    EXPECT_TRUE(app::deviceProblem().contains(u"가득"));
}

TEST(Session, ResetEmptiesTheActionAndBothWorkingTables) {
    test::TestDevice device;
    device.execute(u"INSERT INTO TEMP (PCode) VALUES ('0001'); INSERT INTO YTEMP (PCode) VALUES ('0001')"_s);
    app::session().action.GCode = u"0012"_s;
    app::resetSession();
    EXPECT_EQ(app::session().action.GCode, QString());
    EXPECT_EQ(device.value(u"SELECT (SELECT COUNT(*) FROM TEMP) + (SELECT COUNT(*) FROM YTEMP)"_s), u"0"_s);
}

}  // namespace
