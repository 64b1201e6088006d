#include "rovanactl/DatabaseCopy.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QStringBuilder>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "platform/Clock.h"
#include "platform/Sync.h"
#include "platform/SystemReason.h"
#include "rovanactl/DatabaseCheck.h"
#include "rovanactl/JournalCarry.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QStringView kBeingRestored = u".restored";

QString folderOf(const QString& path) {
    return QFileInfo(path).absolutePath();
}

const QString& unfinishedMark() {
    static const QString text = u".unfinished-"_s;
    return text;
}

/// A file opened and locked for this object's life; the lock shows that its maker lives.
class HeldFile {
  public:
    HeldFile() = default;
    /// Takes the descriptor over; -1 holds nothing. `operation` is flock's.
    HeldFile(int descriptor, int operation)
        : descriptor_(descriptor), isHeld_(descriptor >= 0 && ::flock(descriptor, operation) == 0) {}
    ~HeldFile() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    HeldFile(HeldFile&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)), isHeld_(other.isHeld_) {}
    HeldFile& operator=(HeldFile&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        std::swap(isHeld_, other.isHeld_);
        return *this;
    }

    int descriptor() const { return descriptor_; }
    bool isHeld() const { return isHeld_; }

    /// True when the file still stands under that name.
    bool isAt(const QByteArray& path) const {
        struct stat held = {};
        struct stat named = {};
        return ::fstat(descriptor_, &held) == 0 && ::lstat(path.constData(), &named) == 0 &&
               held.st_dev == named.st_dev && held.st_ino == named.st_ino;
    }

  private:
    int descriptor_ = -1;
    bool isHeld_ = false;
};

/// True for a plain file of the user whose files this process makes in the folder.
bool isOwn(int descriptor, const QString& folder) {
    struct stat file = {};
    struct stat place = {};
    if (::fstat(descriptor, &file) != 0 || !S_ISREG(file.st_mode)) return false;
    if (file.st_uid == ::geteuid()) return true;
    return ::geteuid() == 0 && ::stat(QFile::encodeName(folder).constData(), &place) == 0 &&
           file.st_uid == place.st_uid;
}

/// The name of the database that a file of SQLite's belongs to; the name itself for any other.
QString databaseOf(const QString& name) {
    for (const QStringView suffix : kJournalSuffixes) {
        if (name.endsWith(suffix)) return name.chopped(suffix.size());
    }
    return name;
}

/// Deletes what earlier runs for the same place left that were killed: files under the name that such a run
/// gives, which nobody holds, and then the journals of those that are gone.
void deleteLeftovers(const QString& place) {
    const QString prefix = QFileInfo(place).fileName() % unfinishedMark();
    const QDir folder(folderOf(place));
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDir::Name)) {
        const QString copy = databaseOf(name);
        if (!copy.startsWith(prefix) || copy.size() != prefix.size() + 6) continue;
        if (copy != name && folder.exists(copy)) continue;
        const QByteArray path = QFile::encodeName(folder.filePath(name));
        const HeldFile left(::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC), LOCK_EX | LOCK_NB);
        if (left.isHeld() && left.isAt(path) && isOwn(left.descriptor(), folder.path()))
            ::unlink(path.constData());
    }
}

/// A database that is being made beside its place, gone with this object unless it has taken its name.
class Unfinished {
  public:
    explicit Unfinished(const QString& place) : place_(place) {
        deleteLeftovers(place);
        QByteArray name;
        // Another run may have taken the new file for a leftover before it was held.
        do {
            name = QFile::encodeName(place) + unfinishedMark().toLatin1() + "XXXXXX";
            held_ = HeldFile(::mkostemp(name.data(), O_CLOEXEC), LOCK_EX);
        } while (held_.descriptor() >= 0 && !held_.isAt(name));
        const int descriptor = held_.descriptor();
        if (descriptor < 0) {
            error_ = u"no file can be made in %1: %2"_s.arg(folderOf(place), platform::systemReason());
            return;
        }
        // Made by root in a user's folder, it shall be that user's all the same.
        struct stat folder = {};
        if (::geteuid() == 0 && ::stat(QFile::encodeName(folderOf(place)).constData(), &folder) == 0 &&
            ::fchown(descriptor, folder.st_uid, folder.st_gid) != 0) {
            error_ = u"%1 cannot be given to its owner: %2"_s.arg(place, platform::systemReason());
        }
        path_ = QFile::decodeName(name);
    }
    ~Unfinished() {
        if (path_.isEmpty()) return;
        QFile::remove(path_);
        for (const QStringView suffix : kJournalSuffixes) QFile::remove(path_ % suffix);
    }
    Q_DISABLE_COPY_MOVE(Unfinished)

    const QString& path() const { return path_; }
    const QString& error() const { return error_; }

    /// Puts the file under its name and both on the disk; what is wrong, or nothing.
    QString takeName(bool mayReplace) {
        if (!platform::syncToDisk(path_))
            return u"%1 cannot be put on the disk: %2"_s.arg(place_, platform::systemReason());
        const QByteArray from = QFile::encodeName(path_);
        const QByteArray to = QFile::encodeName(place_);
        int result = ::renameat2(AT_FDCWD, from, AT_FDCWD, to, mayReplace ? 0 : RENAME_NOREPLACE);
        // Not every file system knows how to refuse.
        if (result != 0 && errno == EINVAL && !QFileInfo::exists(place_)) result = ::rename(from, to);
        if (result != 0) return u"%1 cannot take its name: %2"_s.arg(place_, platform::systemReason());
        path_.clear();
        if (!platform::syncToDisk(folderOf(place_)))
            return u"%1 is there, but its folder cannot be put on the disk: %2"_s.arg(
                place_, platform::systemReason());
        return {};
    }

  private:
    QString place_;
    QString path_;
    QString error_;
    HeldFile held_;
};

QString copyFault(const QString& to, SqliteFile& target, qint64 bytes) {
    const qint64 free = QStorageInfo(folderOf(to)).bytesAvailable();
    return u"%1 cannot be written: %2 (it takes %3 KB, its disk has %4 KB free)"_s.arg(
        to, target.errorText(), QString::number((bytes + 1023) / 1024), QString::number(free / 1024));
}

/// Copies `source` to the new file `to`, examined with `examine`.
QString copyTo(const QString& to, SqliteFile& source, qint64 bytes, bool mayReplace,
               QString (*examine)(SqliteFile&), const std::function<QString(SqliteFile&)>& edit = {}) {
    Unfinished copy(to);
    if (!copy.error().isEmpty()) return copy.error();
    {
        SqliteFile target(copy.path(), SqliteFile::Mode::Existing);
        // No journal beside it: until it has its name nobody misses it.
        const bool isCopied = target.isOpen() && target.execute(u"PRAGMA journal_mode=MEMORY"_s) &&
                              target.copyFrom(source) &&
                              // Of one file from here on, readable from a medium that cannot be written.
                              target.execute(u"PRAGMA journal_mode=DELETE"_s);
        if (!isCopied) return copyFault(to, target, bytes);
        if (const QString fault = edit ? edit(target) : QString(); !fault.isEmpty()) return fault;
        if (const QString fault = examine ? examine(target) : QString(); !fault.isEmpty())
            return u"the copy is not sound: %1; \"rovanactl check\" tells whether the database is"_s.arg(
                fault);
    }
    return copy.takeName(mayReplace);
}

QString nameWithTime(const QString& database) {
    const QString stem = database % u'.' % platform::clock::now().toString(u"yyyyMMdd-HHmmss"_s);
    QString name = stem;
    for (int more = 2; QFileInfo::exists(name); ++more) name = stem % u'-' % QString::number(more);
    return name;
}

/// Renames a database that SQLite cannot work with, with the journals that may still help to recover it.
CopyResult moveAside(const QString& database) {
    const QString kept = nameWithTime(database);
    QFile::remove(database % u"-shm"_s);
    for (const QString& suffix : {u"-wal"_s, u"-journal"_s, u""_s}) {
        const QString from = database % suffix;
        if (QFileInfo::exists(from) && !QFile::rename(from, kept % suffix))
            return {u"%1 cannot be renamed to %2"_s.arg(from, kept % suffix), {}};
    }
    QFile::setPermissions(kept, QFile::ReadOwner | QFile::WriteOwner);
    return {{}, kept};
}

/// The process, not this one, that has a database file open with its write-ahead log, or 0. Drops the locks
/// that this process has on the file.
qint64 findUser(const QString& database) {
    const int descriptor = ::open(QFile::encodeName(database).constData(), O_RDWR | O_CLOEXEC);
    if (descriptor < 0) return 0;
    struct flock any = {};
    any.l_type = F_WRLCK;
    any.l_whence = SEEK_SET;
    const bool isAsked = ::fcntl(descriptor, F_GETLK, &any) == 0;
    ::close(descriptor);
    return isAsked && any.l_type != F_UNLCK ? any.l_pid : 0;
}

/// The same as copying `backup` into `database`, whose payments stay known: no card is charged again for one
/// that an older copy does not know. What is wrong, or nothing.
QString replaceButPayments(SqliteFile& backup, SqliteFile& database, const QString& to, qint64 bytes) {
    // Merged beside it, so that the database changes once.
    const QString merged = to % kBeingRestored;
    QString error = copyTo(merged, backup, bytes, true, nullptr);
    if (error.isEmpty()) {
        SqliteFile file(merged, SqliteFile::Mode::Existing);
        error = completeTables(file);
        if (error.isEmpty()) error = carryPayments(database, file);
        if (error.isEmpty() && !database.copyFrom(file)) error = copyFault(to, database, bytes);
    }
    QFile::remove(merged);
    return error;
}

/// Puts the backup's content into the database that is there, or returns why not.
CopyResult replaceContent(SqliteFile& backup, SqliteFile& database, const QString& to, qint64 bytes) {
    const CopyResult kept = keepBeside(database, to);
    if (!kept.error.isEmpty()) return {u"the database that is there cannot be kept: "_s % kept.error, {}};
    QString error;
    if (hasPayments(database)) {
        error = replaceButPayments(backup, database, to, bytes);
    } else if (!database.copyFrom(backup)) {
        error = copyFault(to, database, bytes);
    }
    if (error.isEmpty()) return {completeTables(database), kept.kept};
    QFile::remove(kept.kept);
    return {error, {}};
}

}  // namespace

QString describeUse(const QString& database) {
    const qint64 user = findUser(database);
    return u"%1 is open in %2; close the terminal first"_s.arg(
        database, user > 0 ? u"process %1"_s.arg(user) : u"another program"_s);
}

QString copyEdited(SqliteFile& source, const QString& to, qint64 bytes,
                   const std::function<QString(SqliteFile&)>& edit) {
    return copyTo(to, source, bytes, false, findHopeless, edit);
}

CopyResult keepBeside(SqliteFile& database, const QString& path) {
    const QString kept = nameWithTime(path);
    return {copyTo(kept, database, QFileInfo(path).size(), false, nullptr), kept};
}

CopyResult backUpDatabase(const QString& from, const QString& to, bool mayReplace) {
    const QFileInfo place(to);
    if (place.isDir()) return {u"%1 is a folder; name a file in it"_s.arg(to), {}};
    if (!place.absoluteDir().exists()) return {u"there is no folder %1"_s.arg(place.absolutePath()), {}};
    if (place.exists() && place.canonicalFilePath() == QFileInfo(from).canonicalFilePath())
        return {u"%1 is the database itself"_s.arg(to), {}};
    if (place.exists() && !mayReplace)
        return {u"%1 is there already and is not replaced; --force replaces it"_s.arg(to), {}};
    SqliteFile source(from, SqliteFile::Mode::Existing);
    if (!source.rows(u"PRAGMA schema_version"_s)) {
        return {u"%1 cannot be read: %2; \"rovanactl check\" tells more"_s.arg(from, source.errorText()), {}};
    }
    return {copyTo(place.absoluteFilePath(), source, QFileInfo(from).size(), mayReplace, findHopeless), {}};
}

CopyResult restoreDatabase(const QString& from, const QString& to) {
    const QFileInfo given(from);
    if (!given.isFile()) return {u"there is no file %1"_s.arg(from), {}};
    if (given.canonicalFilePath() == QFileInfo(to).canonicalFilePath())
        return {u"%1 is the database itself"_s.arg(from), {}};
    SqliteFile backup(from, SqliteFile::Mode::Existing);
    if (const QString fault = backup.isOpen() ? findHopeless(backup) : backup.errorText(); !fault.isEmpty())
        return {u"%1 is no sound backup: %2"_s.arg(from, fault), {}};
    if (const QString newer = findNewer(backup); !newer.isEmpty())
        return {u"%1 is not restored: %2"_s.arg(from, newer), {}};
    if (QFileInfo::exists(to) && findUser(to) > 0) return {describeUse(to), {}};

    CopyResult result;
    if (QFileInfo::exists(to)) {
        SqliteFile database(to, SqliteFile::Mode::Existing);
        const SqliteFile::Lock lock = database.lock();
        if (lock == SqliteFile::Lock::InUse) return {describeUse(to), {}};
        if (lock == SqliteFile::Lock::Held) {
            result = replaceContent(backup, database, to, given.size());
            QFile::setPermissions(to, QFile::ReadOwner | QFile::WriteOwner);
            return result;
        }
    }
    // Whole first, so that a database that cannot be worked with goes only when the other can come at once.
    const QString fresh = to % kBeingRestored;
    result.error = copyTo(fresh, backup, given.size(), true, findHopeless);
    if (!result.error.isEmpty()) return result;
    if (QFileInfo::exists(to)) result = moveAside(to);
    if (!result.error.isEmpty()) return result;
    // A journal that was left without its database would be taken for the new one's.
    for (const QStringView suffix : kJournalSuffixes) QFile::remove(to % suffix);
    if (!QFile::rename(fresh, to) || !platform::syncToDisk(folderOf(to))) {
        result.error = u"%1 cannot be renamed to %2"_s.arg(fresh, to);
        return result;
    }
    SqliteFile restored(to, SqliteFile::Mode::Existing);
    result.error = completeTables(restored);
    return result;
}

}  // namespace admin
