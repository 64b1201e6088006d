#pragma once

#include <atomic>

/// Faults of the disk below SQLite, in a test program or, loaded ahead of its libraries, in a program as it
/// is delivered: no program has an option for it.
namespace test {

enum class StorageFault : int {
    None,
    FullDisk,     ///< A write finds no room.
    ShortWrite,   ///< A write ends in its middle.
    FailingSync,  ///< What was written may not be on the disk.
    ReadError,
    Damage,    ///< A page of the database reads as something else.
    ReadOnly,  ///< The file cannot be written any more.
    Locked,    ///< Another process keeps a lock.
    Kill,      ///< The process ends at this very call.
};

/// Which calls fail, counted from the arming on; in memory that a test may share with the program under test.
struct StorageFaultPlan {
    std::atomic<StorageFault> fault = StorageFault::None;
    std::atomic<int> before = 0;       ///< Calls of the fault's kind that still succeed.
    std::atomic<bool> isOnce = false;  ///< Later calls succeed again.
    std::atomic<int> hits = 0;         ///< Calls that failed.
    /// Nothing waits for the disk: a process that ends leaves what it has written, only a loss of power does
    /// not.
    std::atomic<bool> skipsSync = false;

    void arm(StorageFault which, int callsBefore, bool once) {
        fault = StorageFault::None;
        hits = 0;
        before = callsBefore;
        isOnce = once;
        fault = which;
    }
    void disarm() { fault = StorageFault::None; }
};

/// Puts the faults below every database that is opened from here on; `plan` has to outlive them.
void putFaultsBelowSqlite(StorageFaultPlan* plan);

/// The file of a plan that a program shares which is started with kFaultyStorageVariable naming it and the
/// faulty storage loaded ahead.
inline constexpr const char* kFaultyStorageVariable = "ROVANA_TEST_STORAGE";
StorageFaultPlan* shareStorageFaults(const char* path);

}  // namespace test
