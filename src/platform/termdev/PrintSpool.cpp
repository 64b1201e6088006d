#include "platform/termdev/PrintSpool.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringBuilder>
#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "platform/Device.h"
#include "platform/Sync.h"
#include "platform/SystemReason.h"
#include "platform/Trace.h"
#include "platform/WholeFile.h"

namespace platform::termdev {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kDigits = 8;
constexpr int kStaleSeconds = 60;
constexpr QStringView kStages[] = {u"job", u"begun", u"handed"};
constexpr QStringView kUnfinished = u"new";

QString nameOf(int number, QStringView stage) {
    return u"%1.%2"_s.arg(number, kDigits, 10, QChar(u'0')).arg(stage);
}

/// Writes and syncs a file of the name, which must be new.
bool writeNew(const QString& path, QByteArrayView bytes) {
    const int handle =
        ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (handle < 0) return false;
    bool isWritten = true;
    while (isWritten && !bytes.isEmpty()) {
        const ssize_t written = ::write(handle, bytes.data(), size_t(bytes.size()));
        isWritten = written > 0 || (written < 0 && errno == EINTR);
        if (written > 0) bytes = bytes.sliced(written);
    }
    isWritten = isWritten && ::fsync(handle) == 0;
    const int reason = errno;
    ::close(handle);
    if (!isWritten) ::unlink(QFile::encodeName(path).constData());
    errno = reason;
    return isWritten;
}

}  // namespace

PrintSpool::PrintSpool(QStringView name) : folder_(device::folder() % u'/' % name) {}

PrintSpool::~PrintSpool() {
    unlock();
}

QList<PrintSpool::Entry> PrintSpool::entries() const {
    QList<Entry> found;
    for (const QString& name : QDir(folder_).entryList(QDir::Files, QDir::Name)) {
        const QFileInfo file(name);
        const auto* const stage = std::ranges::find(kStages, file.suffix());
        bool isNumber = false;
        const int number = file.completeBaseName().toInt(&isNumber);
        if (isNumber && stage != std::end(kStages))
            found << Entry{number, static_cast<Stage>(stage - std::begin(kStages))};
    }
    return found;
}

QString PrintSpool::path(const Entry& entry) const {
    return folder_ % u'/' % nameOf(entry.number, kStages[size_t(entry.stage)]);
}

bool PrintSpool::add(QByteArrayView job) {
    if (::mkdir(QFile::encodeName(folder_).constData(), 0700) == 0) syncToDisk(device::folder());
    const QList<Entry> before = entries();
    int number = before.isEmpty() ? 1 : before.last().number + 1;
    // Another program may take a number at the same moment.
    while (!writeNew(folder_ % u'/' % nameOf(number, kUnfinished), job)) {
        if (errno != EEXIST) {
            trace(u"printer: a job could not be kept and is lost: %1"_s.arg(systemReason()));
            return false;
        }
        ++number;
    }
    const QByteArray unfinished = QFile::encodeName(folder_ % u'/' % nameOf(number, kUnfinished));
    const auto isNamed = [&](unsigned flags) {
        return ::renameat2(AT_FDCWD, unfinished.constData(), AT_FDCWD,
                           QFile::encodeName(path({number, Stage::Job})).constData(), flags) == 0;
    };
    while (!isNamed(RENAME_NOREPLACE)) {
        if (errno == EINVAL && isNamed(0)) break;  // The file system cannot tell.
        if (errno != EEXIST) {
            trace(u"printer: a job could not be named and is lost"_s);
            return false;
        }
        ++number;
    }
    if (!syncToDisk(folder_)) trace(u"printer: a job is kept, but not for certain"_s);
    return true;
}

int PrintSpool::count() const {
    return int(
        std::ranges::count_if(entries(), [](const Entry& each) { return each.stage != Stage::Handed; }));
}

bool PrintSpool::lock() {
    if (lock_ >= 0) return true;
    lock_ = ::open(QFile::encodeName(folder_ + u"/lock"_s).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock_ < 0) return false;
    if (::flock(lock_, LOCK_EX | LOCK_NB) != 0) {
        const int reason = errno;
        unlock();
        errno = reason;
        return false;
    }
    // What a program left that was killed before its job was whole.
    const QDateTime stale = QDateTime::currentDateTime().addSecs(-kStaleSeconds);
    for (const QFileInfo& file : QDir(folder_).entryInfoList({u"*."_s % kUnfinished}, QDir::Files)) {
        if (file.lastModified() < stale) QFile::remove(file.filePath());
    }
    return true;
}

void PrintSpool::unlock() {
    if (lock_ >= 0) ::close(lock_);
    lock_ = -1;
}

std::optional<PrintSpool::Entry> PrintSpool::oldest() {
    for (const Entry& entry : entries()) {
        if (entry.stage != Stage::Handed) return entry;
        trace(u"printer: a program ended while the printer took its leave; its job counts as printed");
        remove(entry);
    }
    return std::nullopt;
}

std::optional<QByteArray> PrintSpool::read(const Entry& entry) const {
    return readWholeFile(path(entry));
}

void PrintSpool::mark(Entry* entry, Stage stage) {
    const QString before = path(*entry);
    const Entry after{entry->number, stage};
    if (::rename(QFile::encodeName(before).constData(), QFile::encodeName(path(after)).constData()) == 0)
        *entry = after;
}

bool PrintSpool::remove(const Entry& entry) {
    if (!QFile::remove(path(entry)) && QFile::exists(path(entry))) return false;
    syncToDisk(folder_);
    return true;
}

}  // namespace platform::termdev
