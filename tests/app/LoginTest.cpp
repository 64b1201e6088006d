#include "app/Login.h"
#include "books/SlipNumbers.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>

#include "app/ClockCheck.h"
#include "app/DeviceProblem.h"
#include "app/LoginWait.h"
#include "app/Session.h"
#include "app/UnsavedWork.h"
#include "platform/Device.h"
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

TEST(DeviceProblem, NamesTheFolderThatKeepsNothing) {
    test::TestDevice device;
    const QString documents = device.folder() + u"/My Documents"_s;
    const auto isSaid = [&](const QString& what) {
        const QString problem = app::deviceProblem();
        return problem.contains(what) && problem.endsWith(documents);
    };
    EXPECT_EQ(app::deviceProblem(), QString());
    const auto entries = QDir(documents).entryList(QDir::Files | QDir::Hidden);
    {
        const test::FullDisk full(4096);
        EXPECT_TRUE(isSaid(u"가득"_s));
    }
    EXPECT_EQ(QDir(documents).entryList(QDir::Files | QDir::Hidden), entries) << "the try leaves nothing";
    // Permissions bind the superuser only without his privileges.
    const uid_t user = ::geteuid();
    ASSERT_EQ(::chmod(QFile::encodeName(device.folder()).constData(), 0755), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(documents).constData(), 0555), 0);
    ASSERT_EQ(user == 0 ? ::seteuid(65534) : 0, 0);
    const bool isReadOnlySaid = isSaid(u"쓸 수 없습니다"_s);
    ASSERT_EQ(::seteuid(user), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(documents).constData(), 0755), 0);
    EXPECT_TRUE(isReadOnlySaid);
    ASSERT_TRUE(QDir().rename(documents, documents + u".away"_s));
    EXPECT_TRUE(isSaid(u"없습니다"_s));
    ASSERT_TRUE(QDir().rename(documents + u".away"_s, documents));
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

TEST(SimplePayment, IsNumberedFrom7001WithinTheDay) {
    struct NumberCase {
        QString highest;
        QString next;
    };
    const NumberCase cases[] = {{u""_s, u"7001"_s},     {u"0150"_s, u"7001"_s}, {u"6998"_s, u"7001"_s},
                                {u"6999"_s, u"7000"_s}, {u"7005"_s, u"7006"_s}, {u"text"_s, u"7001"_s}};
    for (const NumberCase& c : cases) {
        test::TestDevice device;
        if (!c.highest.isEmpty()) {
            device.insert(u"MTMOK", {{u"DDate", u"2026-11-21"}, {u"JunNo", c.highest}});
            device.insert(u"MTMOK", {{u"DDate", u"2026-11-20"}, {u"JunNo", u"7900"}});
        }
        EXPECT_EQ(books::nextSimplePaymentNumber(u"2026-11-21"), c.next) << c.highest.toStdString();
    }
}

TEST(Session, ResetEmptiesTheActionAndBothWorkingTables) {
    test::TestDevice device;
    device.insert(u"TEMP", {{u"PCode", u"0001"}});
    device.insert(u"YTEMP", {{u"PCode", u"0001"}});
    app::session().UserID = u"A"_s;
    app::session().action.GCode = u"0012"_s;
    app::session().action.SupplySum = platform::Won(5);
    app::resetSession();
    EXPECT_EQ(app::session().action.GCode, QString());
    EXPECT_TRUE(app::session().action.SupplySum.isZero());
    EXPECT_EQ(app::session().UserID, u"A"_s);
    EXPECT_EQ(device.value(u"SELECT (SELECT COUNT(*) FROM TEMP) + (SELECT COUNT(*) FROM YTEMP)"_s), u"0"_s);
}

TEST(ClockCheck, TellsAnEarlierClockAndAnotherWorkDate) {
    test::TestDevice device;
    // An order of the office for tomorrow has no time of saving.
    device.insert(u"MTM", {{u"DDate", u"2026-11-23"}});
    EXPECT_EQ(app::newestSlip(), QString());
    device.insert(u"MTM", {{u"DDate", u"2026-11-21"}, {u"DTime", u"09:30"}});
    device.insert(u"MTM", {{u"DDate", u"2026-11-20"}, {u"DTime", u"18:00"}});
    EXPECT_EQ(app::newestSlip(), u"2026-11-21 09:30"_s);
    device.insert(u"MTMOK", {{u"DDate", u"2026-11-21"}, {u"DTime", u"10:00"}});
    EXPECT_EQ(app::newestSlip(), u"2026-11-21 10:00"_s);
    const struct {
        const char* now;
        const char* workDate;
        bool isEarlier;
        bool isOtherDay;
    } cases[] = {{"2026-11-21T10:00", "2026-11-21", false, false},
                 {"2026-11-21T09:59", "2026-11-21", true, false},
                 {"2026-11-22T08:00", "2026-11-21", false, true},
                 {"2026-10-21T12:00", "2026-11-21", true, true}};
    for (const auto& c : cases) {
        const QString said = app::clockProblem(QString::fromLatin1(c.workDate),
                                               QDateTime::fromString(QLatin1StringView(c.now), Qt::ISODate),
                                               app::newestSlip());
        EXPECT_EQ(said.contains(u"마지막 전표(2026-11-21 10:00)보다 이릅니다"_s), c.isEarlier) << c.now;
        EXPECT_EQ(said.contains(u"작업일자(2026-11-21)가 오늘("_s), c.isOtherDay) << c.now;
    }
}

TEST(UnsavedWork, IsOfferedToItsUserOnItsDay) {
    books::UnsavedSlip slip;
    slip.userId = u"A"_s;
    slip.date = u"2026-11-21"_s;
    slip.gName = u"까치가든"_s;
    slip.lines = 4;
    EXPECT_EQ(app::describeUnsaved(slip, u"A", u"2026-11-21"),
              u"저장안된 주문서: 까치가든 4품목, 계속할까요?"_s);
    slip.table = books::Working::Containers;
    for (const auto& [user, date] : {std::pair{u"B", u"2026-11-21"}, {u"A", u"2026-11-22"}}) {
        const QString said = app::describeUnsaved(slip, user, date);
        EXPECT_TRUE(said.startsWith(u"저장안된 용공회수전표: 까치가든 4품목..!"_s)) << said.toStdString();
        EXPECT_TRUE(said.contains(u"사번 A, 작업일자 2026-11-21로"_s)) << said.toStdString();
    }
}

TEST(Company, TheLastRowWins) {
    test::TestDevice device;
    device.insert(u"config", {{u"sangho", u"첫째"}, {u"tel", u"1"}});
    device.insert(u"config", {{u"sangho", u"둘째"}, {u"cardno", u"9"}, {u"cardpass", u"8642"}});
    app::loadCompany();
    EXPECT_EQ(app::session().sangho, u"둘째"_s);
    EXPECT_EQ(app::session().tel, QString());
    EXPECT_EQ(app::session().cardno, u"9"_s);
    EXPECT_EQ(app::session().cardpass.view(), u"8642");
}

}  // namespace
