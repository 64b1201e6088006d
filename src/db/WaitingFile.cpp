#include "db/WaitingFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <csignal>

#include "platform/Sync.h"

namespace db {
namespace {

using namespace Qt::Literals::StringLiterals;

bool isSameFile(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// Whether the open file `descriptor` of a process was opened for writing.
bool isOpenForWriting(const QString& process, const QString& descriptor) {
    QFile particulars(process + u"/fdinfo/"_s + descriptor);
    if (!particulars.open(QIODevice::ReadOnly)) return false;
    for (const QByteArray& line : particulars.readAll().split('\n')) {
        if (line.startsWith("flags:"))
            return (line.mid(6).trimmed().toInt(nullptr, 8) & O_ACCMODE) != O_RDONLY;
    }
    return false;
}

/// Whether a process that can be seen has the file open for writing.
bool hasWriter(const struct stat& file) {
    for (const QString& number : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        if (!number.front().isDigit()) continue;
        const QString process = u"/proc/"_s + number;
        const QDir descriptors(process + u"/fd"_s);
        for (const QString& each :
             descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
            struct stat opened = {};
            if (::stat(QFile::encodeName(descriptors.filePath(each)).constData(), &opened) == 0 &&
                isSameFile(opened, file) && isOpenForWriting(process, each)) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

WaitingFile::WaitingFile(const QString& path) : path_(path) {
    if (!isAt(path)) return;
    file_ = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file_ < 0 || ::fstat(file_, &status_) != 0) return;
    // Who wants to write the file waits until this one lets go; the usual signal would end the program.
    ::fcntl(file_, F_SETSIG, SIGURG);
    hasLease_ = ::fcntl(file_, F_SETLEASE, F_RDLCK) == 0;
    if (!hasLease_ && (errno == EAGAIN || hasWriter(status_))) {
        state_ = State::BeingWritten;
        return;
    }
    QFile reader;
    if (!reader.open(file_, QIODevice::ReadOnly)) return;
    content_ = reader.readAll();
    if (reader.error() != QFileDevice::NoError) return;
    state_ = isUntouched() && content_.size() == status_.st_size ? State::Read : State::BeingWritten;
}

WaitingFile::~WaitingFile() {
    if (file_ >= 0) ::close(file_);
}

bool WaitingFile::isAt(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    return ::stat(name.constData(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::faccessat(AT_FDCWD, name.constData(), R_OK | W_OK, AT_EACCESS) == 0;
}

bool WaitingFile::isUnchanged(const struct stat& one, const struct stat& other) {
    return isSameFile(one, other) && one.st_size == other.st_size &&
           one.st_ctim.tv_sec == other.st_ctim.tv_sec && one.st_ctim.tv_nsec == other.st_ctim.tv_nsec;
}

qint64 WaitingFile::modified() const {
    return qint64{status_.st_mtim.tv_sec} * 1000 + status_.st_mtim.tv_nsec / 1'000'000;
}

bool WaitingFile::isUntouched() const {
    struct stat now = {};
    return ::stat(QFile::encodeName(path_).constData(), &now) == 0 && isUnchanged(now, status_) &&
           !isWritten();
}

bool WaitingFile::isWritten() const {
    return hasLease_ ? ::fcntl(file_, F_GETLEASE) != F_RDLCK : hasWriter(status_);
}

bool WaitingFile::removeForGood() {
    const bool isGone = !QFileInfo::exists(path_) || (isUntouched() && QFile::remove(path_));
    return isGone && platform::syncToDisk(QFileInfo(path_).absolutePath());
}

}  // namespace db
