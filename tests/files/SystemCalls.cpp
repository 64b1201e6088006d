#include "files/SystemCalls.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <algorithm>
#include <cerrno>
#include <string_view>

namespace {

struct Watch {
    QByteArray folder;
    QStringList calls;
    int failing = -1;
    qsizetype mostBytes = 0;  ///< 0 for any number.
};
Watch* watch = nullptr;

QByteArray pathOf(int descriptor) {
    QByteArray path(4096, '\0');
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(descriptor);
    path.truncate(std::max<ssize_t>(0, ::readlink(link.constData(), path.data(), size_t(path.size()))));
    return path;
}

/// Notes the call; false when it is to fail.
bool note(const char* call, const QByteArray& path) {
    if (watch == nullptr || !(path + '/').startsWith(watch->folder + '/') || path.contains(".cdb"))
        return true;
    const QString name = QDir(QFile::decodeName(watch->folder)).relativeFilePath(QFile::decodeName(path));
    watch->calls << QString::fromLatin1(call) + QChar(u' ') + name;
    if (watch->failing < 0 || watch->failing-- > 0) return true;
    errno = EIO;
    return false;
}

}  // namespace

// The program's own definitions come before those of the C library.
extern "C" {

ssize_t write(int descriptor, const void* bytes, size_t size) {
    if (watch != nullptr) {
        const QByteArray path = pathOf(descriptor);
        if (!note("write", path)) return -1;
        if (watch->mostBytes > 0 && path.startsWith(watch->folder + '/'))
            size = std::min(size, size_t(watch->mostBytes));
    }
    return ssize_t(::syscall(SYS_write, descriptor, bytes, size));
}

int fsync(int descriptor) {
    if (watch != nullptr && !note("sync", pathOf(descriptor))) return -1;
    return int(::syscall(SYS_fsync, descriptor));
}

int rename(const char* from, const char* to) noexcept {
    return note("rename", to) ? int(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0)) : -1;
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    return note("rename", to) ? int(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags)) : -1;
}

int unlink(const char* path) noexcept {
    return note("remove", path) ? int(::syscall(SYS_unlinkat, AT_FDCWD, path, 0)) : -1;
}

}  // extern "C"

namespace test {

SystemCalls::SystemCalls(const QString& folder) {
    watch = new Watch{QFile::encodeName(QDir(folder).canonicalPath()), {}, -1, 0};
}

SystemCalls::~SystemCalls() {
    delete watch;
    watch = nullptr;
}

QStringList SystemCalls::take() {
    QStringList taken;
    taken.swap(watch->calls);
    return taken;
}

void SystemCalls::failAt(int number) {
    watch->failing = number;
}

void SystemCalls::shortenWrites(qsizetype bytes) {
    watch->mostBytes = bytes;
}

}  // namespace test
