#include "support/FaultyStorage.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>

namespace test {
namespace {

/// What SQLite sees as its open file; the real one lies behind it.
struct File {
    sqlite3_file base;
    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_vfs* theReal = nullptr;
StorageFaultPlan* thePlan = nullptr;

sqlite3_file* realOf(sqlite3_file* file) {
    return reinterpret_cast<File*>(file)->real();
}

const sqlite3_io_methods& methodsOf(sqlite3_file* file) {
    return *realOf(file)->pMethods;
}

/// True when this call, of the kind that the fault hits, fails.
bool isHit(StorageFault fault) {
    if (thePlan->fault != fault) return false;
    if (thePlan->before.fetch_sub(1) > 0) return false;
    if (fault == StorageFault::Kill) ::kill(::getpid(), SIGKILL);
    ++thePlan->hits;
    if (thePlan->isOnce) thePlan->fault = StorageFault::None;
    return true;
}

int readFile(sqlite3_file* file, void* bytes, int count, sqlite3_int64 at) {
    if (isHit(StorageFault::ReadError)) return SQLITE_IOERR_READ;
    const int result = methodsOf(file).xRead(realOf(file), bytes, count, at);
    constexpr int kSmallestPage = 512;
    if (count >= kSmallestPage && isHit(StorageFault::Damage)) std::memset(bytes, 0xA5, size_t(count));
    return result;
}

int writeFile(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 at) {
    isHit(StorageFault::Kill);
    if (isHit(StorageFault::FullDisk)) return SQLITE_FULL;
    if (isHit(StorageFault::ReadOnly)) return SQLITE_READONLY;
    if (isHit(StorageFault::ShortWrite)) {
        methodsOf(file).xWrite(realOf(file), bytes, count / 2, at);
        return SQLITE_IOERR_WRITE;
    }
    return methodsOf(file).xWrite(realOf(file), bytes, count, at);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    isHit(StorageFault::Kill);
    return methodsOf(file).xTruncate(realOf(file), size);
}

int syncFile(sqlite3_file* file, int flags) {
    isHit(StorageFault::Kill);
    if (isHit(StorageFault::FailingSync)) return SQLITE_IOERR_FSYNC;
    if (thePlan->skipsSync) return SQLITE_OK;
    return methodsOf(file).xSync(realOf(file), flags);
}

int lockFile(sqlite3_file* file, int lock) {
    if (lock >= SQLITE_LOCK_RESERVED && isHit(StorageFault::Locked)) return SQLITE_BUSY;
    return methodsOf(file).xLock(realOf(file), lock);
}

int lockShared(sqlite3_file* file, int offset, int count, int flags) {
    isHit(StorageFault::Kill);
    // The first lock is the writer's; where others are kept, SQLite waits ten seconds and more.
    constexpr int kWriter = SQLITE_SHM_LOCK | SQLITE_SHM_EXCLUSIVE;
    if (offset == 0 && flags == kWriter && isHit(StorageFault::Locked)) return SQLITE_BUSY;
    return methodsOf(file).xShmLock(realOf(file), offset, count, flags);
}

/// A call that no fault hits.
template <auto kMethod, typename... Arguments>
auto pass(sqlite3_file* file, Arguments... arguments) {
    return (methodsOf(file).*kMethod)(realOf(file), arguments...);
}
using Methods = sqlite3_io_methods;

constexpr Methods kMethods{2,
                           pass<&Methods::xClose>,
                           readFile,
                           writeFile,
                           truncateFile,
                           syncFile,
                           pass<&Methods::xFileSize>,
                           lockFile,
                           pass<&Methods::xUnlock>,
                           pass<&Methods::xCheckReservedLock>,
                           pass<&Methods::xFileControl>,
                           pass<&Methods::xSectorSize>,
                           pass<&Methods::xDeviceCharacteristics>,
                           pass<&Methods::xShmMap>,
                           lockShared,
                           pass<&Methods::xShmBarrier>,
                           pass<&Methods::xShmUnmap>,
                           nullptr,
                           nullptr};

int openFile(sqlite3_vfs*, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) {
    isHit(StorageFault::Kill);
    file->pMethods = nullptr;
    const int result = theReal->xOpen(theReal, name, realOf(file), flags, outFlags);
    if (result == SQLITE_OK) file->pMethods = &kMethods;
    return result;
}

/// In a program that was started with a plan.
__attribute__((constructor)) void shareThePlan() {
    const char* path = std::getenv(kFaultyStorageVariable);
    if (path == nullptr) return;
    if (StorageFaultPlan* plan = shareStorageFaults(path)) putFaultsBelowSqlite(plan);
}

}  // namespace

void putFaultsBelowSqlite(StorageFaultPlan* plan) {
    static sqlite3_vfs faulty;
    thePlan = plan;
    if (theReal != nullptr) return;
    theReal = sqlite3_vfs_find(nullptr);
    faulty = *theReal;
    faulty.zName = "faulty";
    faulty.szOsFile += int(sizeof(File));
    faulty.xOpen = openFile;
    sqlite3_vfs_register(&faulty, 1);
}

StorageFaultPlan* shareStorageFaults(const char* path) {
    const int descriptor = ::open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0 || ::ftruncate(descriptor, sizeof(StorageFaultPlan)) != 0) return nullptr;
    void* memory =
        ::mmap(nullptr, sizeof(StorageFaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    ::close(descriptor);
    // All zeros is a plan without a fault.
    return memory == MAP_FAILED ? nullptr : static_cast<StorageFaultPlan*>(memory);
}

}  // namespace test
