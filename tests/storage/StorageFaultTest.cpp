#include <gtest/gtest.h>
#include <sqlite3.h>

#include "platform/adoce/DatabaseFile.h"
#include "storage/StoredChanges.h"
#include "support/FaultyStorage.h"
#include "support/PrintQt.h"
#include "support/RecordedTraces.h"

/// Lets every single call of each change to the database fail in each way that a disk can.
namespace {

using namespace Qt::Literals::StringLiterals;
using test::StorageFault;

constexpr struct {
    const char* name;
    StorageFault fault;
    bool isOnce;
} kFaults[] = {
    {"full disk", StorageFault::FullDisk, false},    {"room again", StorageFault::FullDisk, true},
    {"short write", StorageFault::ShortWrite, true}, {"failing sync", StorageFault::FailingSync, true},
    {"read error", StorageFault::ReadError, true},   {"no reading", StorageFault::ReadError, false},
    {"read-only", StorageFault::ReadOnly, false},    {"locked", StorageFault::Locked, false},
    {"damaged page", StorageFault::Damage, true},
};

class StorageFaultTest : public test::StoredChangesTest {
  protected:
    static void SetUpTestSuite() {
        plan_.skipsSync = true;
        test::putFaultsBelowSqlite(&plan_);
    }
    static void TearDownTestSuite() { plan_.skipsSync = false; }

    static inline test::StorageFaultPlan plan_;
};

TEST_F(StorageFaultTest, EveryChangeIsMadeWholeOrNotAtAllAndTheProgramGoesOn) {
    const int step = qEnvironmentVariableIsSet("ROVANA_POWER_CUTS") ? 1000 : 4;
    int faults = 0;
    int lost = 0;
    for (const test::Change& change : test::storedChanges()) {
        reset();
        const QStringList before = everything();
        ASSERT_TRUE(change.make()) << change.name;
        const QStringList after = everything();
        ASSERT_NE(before, after) << change.name;
        for (const auto& [name, fault, isOnce] : kFaults) {
            // A usual run leaves more and more of them out.
            for (int call = 0;; call += 1 + call / step) {
                SCOPED_TRACE(testing::Message() << change.name << ", " << name << " at call " << call);
                reset();
                test::RecordedTraces traces;
                // The terminal has its database open; only then the disk fails.
                QString error;
                const auto file = platform::adoce::DatabaseFile::shared(device_.databaseFile(), &error);
                ASSERT_TRUE(file) << error.toStdString();
                sqlite3_busy_timeout(file->sqlite().handle(), 0);
                sqlite3_exec(file->sqlite().handle(), "SELECT name FROM sqlite_schema", nullptr, nullptr,
                             nullptr);
                plan_.arm(fault, call, isOnce);
                const bool isMade = change.make();
                const bool isHit = plan_.hits > 0;
                plan_.disarm();
                EXPECT_EQ(everything(), isMade ? after : before);
                if (!isHit) {
                    EXPECT_TRUE(isMade);
                    break;
                }
                ++faults;
                EXPECT_TRUE(isMade || !traces.take().isEmpty()) << "nothing in the log";
                // The program goes on, or another starts: a page once read is kept.
                if (call % 2 == 1 || fault == StorageFault::Damage)
                    platform::adoce::DatabaseFile::forgetAll();
                const QStringList found = everything();
                if (found != before && found != after) {
                    ++lost;
                    ADD_FAILURE() << found.join(u'\n').toStdString();
                }
                if (found == before) {
                    EXPECT_TRUE(change.make());
                    EXPECT_EQ(everything(), after);
                }
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    std::printf("torture disk %d 0 %d %d 0\n", int(test::storedChanges().size()), faults, lost);
}

}  // namespace
