#include "platform/WholeFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>

#include "platform/Sync.h"
#include "platform/SystemReason.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;

/// True when the open file still stands under that name.
bool isAt(int descriptor, const QByteArray& path) {
    struct stat held = {};
    struct stat named = {};
    return ::fstat(descriptor, &held) == 0 && ::lstat(path.constData(), &named) == 0 &&
           held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

bool writeAll(int descriptor, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), size_t(bytes.size()));
        if (written < 0 && errno == EINTR) continue;
        if (written == 0) errno = ENOSPC;
        if (written <= 0) return false;
        bytes = bytes.sliced(written);
    }
    return true;
}

bool rename(const QByteArray& from, const QByteArray& to, WholeFile::IfThere ifThere) {
    if (ifThere == WholeFile::IfThere::Replace) return ::rename(from.constData(), to.constData()) == 0;
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL) return false;
    // Not every file system knows how to refuse.
    if (::access(to.constData(), F_OK) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(from.constData(), to.constData()) == 0;
}

}  // namespace

WholeFile::WholeFile(const QString& path) {
    const QFileInfo given(path);
    path_ = QFile::encodeName(given.isSymLink() ? given.symLinkTarget() : path);
    // One name, so that what a killed writer left is written over by the next one.
    unfinished_ = path_ + ".unfinished";
}

WholeFile::~WholeFile() {
    close();
}

bool WholeFile::begin(QByteArrayView content) {
    if (!open()) return fail();
    const bool isWritten = ::fchmod(descriptor_, kOwnerOnly) == 0 && ::ftruncate(descriptor_, 0) == 0 &&
                           writeAll(descriptor_, content);
    return isWritten || fail();
}

bool WholeFile::sync() {
    return ::fsync(descriptor_) == 0 || fail();
}

qint64 WholeFile::modified() const {
    return QFileInfo(QFile::decodeName(unfinished_)).lastModified().toMSecsSinceEpoch();
}

bool WholeFile::takeNameOnly(IfThere ifThere) {
    if (descriptor_ < 0) return false;
    if (!rename(unfinished_, path_, ifThere)) return fail();
    ::close(descriptor_);
    descriptor_ = -1;
    return true;
}

bool WholeFile::syncFolder() {
    return syncToDisk(QFileInfo(QFile::decodeName(path_)).absolutePath()) || fail();
}

/// Opens the file beside and locks it, so that nobody else writes into it.
bool WholeFile::open() {
    close();
    for (;;) {
        descriptor_ =
            ::open(unfinished_.constData(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly);
        // Left by another user's program: whose folder it is may remove it.
        if (descriptor_ < 0 && errno == EACCES && ::unlink(unfinished_.constData()) == 0) continue;
        if (descriptor_ < 0) return false;
        // A file system without locks has no others to wait for.
        while (::flock(descriptor_, LOCK_EX) != 0 && errno == EINTR) continue;
        if (isAt(descriptor_, unfinished_)) return true;
        // The one who held it before has given it its name, or has removed it.
        ::close(descriptor_);
        descriptor_ = -1;
    }
}

bool WholeFile::fail() {
    error_ = systemReason();
    close();
    return false;
}

void WholeFile::close() {
    if (descriptor_ < 0) return;
    ::unlink(unfinished_.constData());
    ::close(descriptor_);
    descriptor_ = -1;
}

bool writeWholeFile(const QString& path, QByteArrayView content, QString* error, WholeFile::IfThere ifThere) {
    WholeFile file(path);
    if (file.write(content) && file.takeName(ifThere)) return true;
    if (error != nullptr) *error = file.errorText();
    return false;
}

std::optional<QByteArray> readWholeFile(const QString& path, QString* error) {
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        QByteArray content = file.readAll();
        if (file.error() == QFileDevice::NoError) return content;
    }
    if (error != nullptr) *error = file.errorString();
    return std::nullopt;
}

}  // namespace platform
