#include "support/SystemCalls.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QByteArray>
#include <algorithm>
#include <cstdarg>

namespace {

test::CallObserver* observer = nullptr;

}  // namespace

// The program's own definitions come before those of the C library.
extern "C" {

ssize_t write(int descriptor, const void* bytes, size_t size) {
    if (observer == nullptr) return ssize_t(::syscall(SYS_write, descriptor, bytes, size));
    const bool isAppended = (::fcntl(descriptor, F_GETFL) & O_APPEND) != 0;
    const off_t at = ::lseek(descriptor, 0, isAppended ? SEEK_END : SEEK_CUR);
    const ssize_t written = ::syscall(SYS_write, descriptor, bytes, size);
    if (written > 0 && at >= 0) observer->written(descriptor, bytes, size_t(written), at);
    return written;
}

int fsync(int descriptor) {
    const int result = int(::syscall(SYS_fsync, descriptor));
    if (result == 0 && observer != nullptr) observer->synced(descriptor);
    return result;
}

int fdatasync(int descriptor) {
    const int result = int(::syscall(SYS_fdatasync, descriptor));
    if (result == 0 && observer != nullptr) observer->synced(descriptor);
    return result;
}

ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t at) {
    const ssize_t written = ::syscall(SYS_pwrite64, descriptor, bytes, size, at);
    if (written > 0 && observer != nullptr) observer->written(descriptor, bytes, size_t(written), at);
    return written;
}
ssize_t pwrite64(int descriptor, const void* bytes, size_t size, off64_t at) {
    return pwrite(descriptor, bytes, size, at);
}

int ftruncate(int descriptor, off_t size) noexcept {
    const int result = int(::syscall(SYS_ftruncate, descriptor, size));
    if (result == 0 && observer != nullptr) observer->truncated(descriptor, size);
    return result;
}
int ftruncate64(int descriptor, off64_t size) noexcept {
    return ftruncate(descriptor, size);
}

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : mode_t(0);
    va_end(rest);
    const int descriptor = int(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
    if (descriptor >= 0 && (flags & O_TRUNC) != 0 && observer != nullptr) observer->truncated(descriptor, 0);
    return descriptor;
}
int open64(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : mode_t(0);
    va_end(rest);
    return open(path, flags, mode);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    const int result = int(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
    if (result == 0 && observer != nullptr) observer->renamed(from, to);
    return result;
}
int rename(const char* from, const char* to) noexcept {
    return renameat2(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int unlink(const char* path) noexcept {
    const int result = int(::syscall(SYS_unlinkat, AT_FDCWD, path, 0));
    if (result == 0 && observer != nullptr) observer->removed(path);
    return result;
}
int rmdir(const char* path) noexcept {
    const int result = int(::syscall(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR));
    if (result == 0 && observer != nullptr) observer->removed(path);
    return result;
}
int mkdir(const char* path, mode_t mode) noexcept {
    const int result = int(::syscall(SYS_mkdirat, AT_FDCWD, path, mode));
    if (result == 0 && observer != nullptr) observer->folderMade(path);
    return result;
}

}  // extern "C"

namespace test {

void observeCalls(CallObserver* heard) {
    observer = heard;
}

QByteArray pathOfDescriptor(int descriptor) {
    QByteArray path(4096, '\0');
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(descriptor);
    path.truncate(std::max<ssize_t>(0, ::readlink(link.constData(), path.data(), size_t(path.size()))));
    return path;
}

}  // namespace test
