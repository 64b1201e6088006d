#include "support/PowerCut.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cstdarg>
#include <limits>
#include <utility>

namespace test {
namespace {

constexpr qint64 kSector = 512;
constexpr int kNever = std::numeric_limits<int>::max();

enum class Kind { Write, Truncate, Sync, Name, Rename, Remove, MakeFolder, SyncFolder };

struct Call {
    Kind kind;
    int file = -1;
    qint64 at = 0;  ///< Of a truncation the size.
    QByteArray bytes = {};
    QByteArray path = {};
    QByteArray to = {};
    int syncedAt = kNever;  ///< The call that puts it on the disk.
};

bool isTurningPoint(const Call& call) {
    return call.kind != Kind::Write && call.kind != Kind::Truncate;
}

QByteArray folderOf(const QByteArray& path) {
    return path.left(std::max<qsizetype>(0, path.lastIndexOf('/')));
}

QByteArray pathOfDescriptor(int descriptor) {
    QByteArray path(4096, '\0');
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(descriptor);
    path.truncate(std::max<ssize_t>(0, ::readlink(link.constData(), path.data(), size_t(path.size()))));
    return path;
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void rename(DiskState& state, const QByteArray& from, const QByteArray& to) {
    const auto file = state.names.find(from);
    if (file == state.names.end()) return;
    state.names[to] = file->second;
    state.names.erase(from);
}

void write(QByteArray& content, const QByteArray& bytes, qint64 at) {
    if (content.size() < at + bytes.size())
        content.append(QByteArray(at + bytes.size() - content.size(), '\0'));
    content.replace(at, bytes.size(), bytes);
}

void apply(const Call& call, DiskState& state) {
    switch (call.kind) {
        case Kind::Write: return write(state.contents[size_t(call.file)], call.bytes, call.at);
        case Kind::Truncate: {
            QByteArray& content = state.contents[size_t(call.file)];
            if (content.size() < call.at) content.append(QByteArray(call.at - content.size(), '\0'));
            return content.truncate(call.at);
        }
        case Kind::Name: state.names[call.path] = call.file; return;
        case Kind::Rename: return rename(state, call.path, call.to);
        case Kind::Remove: state.names.erase(call.path); return;
        case Kind::MakeFolder: state.folders.insert(call.path); return;
        case Kind::Sync:
        case Kind::SyncFolder: return;
    }
}

}  // namespace

/// Hears of every call of this process that has changed a file, databases and all, when it was made.
class CallRecorder {
  public:
    explicit CallRecorder(const QString& folder)
        : folder_(QFile::encodeName(QDir(folder).canonicalPath()) + '/') {
        QDirIterator each(QFile::decodeName(folder_), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
        while (each.hasNext()) {
            const QByteArray path = QFile::encodeName(each.next());
            if (each.fileInfo().isDir()) {
                first.folders.insert(within(path));
            } else if (isRecorded(path)) {
                first.names[within(path)] = fileAt(path);
                first.contents.back() = readAll(each.filePath());
                struct stat status = {};
                ::stat(path.constData(), &status);
                first.modified[int(first.contents.size()) - 1] = status.st_mtim;
            }
        }
        now_ = {first.names, first.folders, {}, {}};
        observer = this;
    }
    ~CallRecorder() { observer = nullptr; }

    void written(int file, const void* bytes, size_t size, off_t at) {
        const int number = named(file);
        if (number < 0) return;
        // As the disk takes them, one after another.
        const auto* byte = static_cast<const char*>(bytes);
        for (const char* end = byte + size; byte != end;) {
            const auto part = std::min<qint64>(end - byte, kSector - at % kSector);
            add({.kind = Kind::Write, .file = number, .at = at, .bytes = QByteArray(byte, part)});
            byte += part;
            at += part;
        }
    }
    void truncated(int file, off_t size) {
        if (const int number = named(file); number >= 0)
            add({.kind = Kind::Truncate, .file = number, .at = size});
    }
    void synced(int file) {
        const QByteArray path = pathOfDescriptor(file);
        struct stat status = {};
        if (::fstat(file, &status) != 0 || !(path + '/').startsWith(folder_)) return;
        const bool isFolder = S_ISDIR(status.st_mode);
        const int number = isFolder ? -1 : named(file);
        if (!isFolder && number < 0) return;
        const int now = int(calls.size());
        for (Call& call : calls) {
            if (call.syncedAt != kNever || isTurningPoint(call) != isFolder) continue;
            if (isFolder ? folderOf(call.path) == within(path) : call.file == number) call.syncedAt = now;
        }
        add({.kind = isFolder ? Kind::SyncFolder : Kind::Sync, .path = within(path)});
    }
    void renamed(const QByteArray& from, const QByteArray& to) {
        if (isRecorded(to)) add({.kind = Kind::Rename, .path = within(from), .to = within(to)});
    }
    void removed(const QByteArray& path) {
        if (isRecorded(path)) add({.kind = Kind::Remove, .path = within(path)});
    }
    void folderMade(const QByteArray& path) {
        if (isRecorded(path)) add({.kind = Kind::MakeFolder, .path = within(path)});
    }

    static inline CallRecorder* observer = nullptr;

    DiskState first;
    std::vector<Call> calls;

  private:
    void add(Call call) {
        // A file that is gone leaves its inode to another.
        if (call.kind == Kind::Remove) forget(call.path);
        if (call.kind == Kind::Rename && now_.names.contains(call.path)) forget(call.to);
        if (isTurningPoint(call)) apply(call, now_);
        calls.push_back(std::move(call));
    }
    void forget(const QByteArray& path) {
        const auto file = now_.names.find(path);
        if (file == now_.names.end()) return;
        std::erase_if(numbers_, [&](const auto& each) { return each.second == file->second; });
    }
    bool isRecorded(const QByteArray& path) const {
        return path.startsWith(folder_) && !path.endsWith("-shm") && !path.endsWith(".log");
    }
    QByteArray within(const QByteArray& path) const { return path.mid(folder_.size()); }

    /// The number of the file, a new one when it is not known.
    int fileAt(const QByteArray& path) {
        struct stat status = {};
        ::stat(path.constData(), &status);
        const auto [known, isNew] = numbers_.try_emplace(status.st_ino, int(first.contents.size()));
        if (isNew) first.contents.emplace_back();
        return known->second;
    }
    /// The number of an open file; the first call for a new one gives it its name.
    int named(int descriptor) {
        const QByteArray path = pathOfDescriptor(descriptor);
        struct stat status = {};
        if (!isRecorded(path) || ::fstat(descriptor, &status) != 0 || status.st_nlink == 0) return -1;
        const size_t known = first.contents.size();
        const int number = fileAt(path);
        if (first.contents.size() > known) add({.kind = Kind::Name, .file = number, .path = within(path)});
        return number;
    }

    QByteArray folder_;
    DiskState now_;  ///< Without contents.
    std::map<ino_t, int> numbers_;
};

PowerCut::PowerCut(const QString& folder) : recorder_(std::make_unique<CallRecorder>(folder)) {}
PowerCut::~PowerCut() = default;

int PowerCut::calls() const {
    return int(recorder_->calls.size());
}

std::vector<int> PowerCut::turningPoints() const {
    std::vector<int> points;
    for (int i = 0; i < calls(); ++i) {
        if (isTurningPoint(recorder_->calls[size_t(i)])) points.push_back(i);
    }
    return points;
}

void PowerCut::finish() {
    CallRecorder::observer = nullptr;
}

DiskState PowerCut::stateBefore(int before, int percent, std::mt19937& random) const {
    DiskState state = recorder_->first;
    std::uniform_int_distribution<int> chance(0, 99);
    for (int i = 0; i < before; ++i) {
        const Call& call = recorder_->calls[size_t(i)];
        if (call.syncedAt < before || chance(random) < percent) apply(call, state);
    }
    return state;
}

void DiskState::writeTo(const QString& path) const {
    QDir folder(path);
    folder.removeRecursively();
    folder.mkpath(QStringLiteral("."));
    for (const QByteArray& each : folders) folder.mkpath(QFile::decodeName(each));
    for (const auto& [name, number] : names) {
        const QString place = folder.filePath(QFile::decodeName(name));
        // A folder that is not on the disk has no names in it.
        if (!QFileInfo(place).dir().exists()) continue;
        QFile file(place);
        if (!file.open(QIODevice::WriteOnly)) continue;
        file.write(contents[size_t(number)]);
        file.flush();
        if (const auto time = modified.find(number); time != modified.end()) {
            const timespec times[] = {time->second, time->second};
            ::futimens(file.handle(), times);
        }
    }
}

/// Tells of a call that has succeeded; returns its result.
template <auto kHeard, typename... Arguments>
static int tell(long result, Arguments... arguments) {
    if (result == 0 && CallRecorder::observer != nullptr) (CallRecorder::observer->*kHeard)(arguments...);
    return int(result);
}

// The program's own definitions come before those of the C library.
extern "C" {

ssize_t write(int descriptor, const void* bytes, size_t size) {
    if (CallRecorder::observer == nullptr) return ssize_t(::syscall(SYS_write, descriptor, bytes, size));
    const bool isAppended = (::fcntl(descriptor, F_GETFL) & O_APPEND) != 0;
    const off_t at = ::lseek(descriptor, 0, isAppended ? SEEK_END : SEEK_CUR);
    const ssize_t written = ::syscall(SYS_write, descriptor, bytes, size);
    if (written > 0 && at >= 0) tell<&CallRecorder::written>(0, descriptor, bytes, size_t(written), at);
    return written;
}
ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t at) {
    const ssize_t written = ::syscall(SYS_pwrite64, descriptor, bytes, size, at);
    if (written > 0) tell<&CallRecorder::written>(0, descriptor, bytes, size_t(written), at);
    return written;
}
[[gnu::alias("pwrite")]] ssize_t pwrite64(int descriptor, const void* bytes, size_t size, off64_t at);

int fsync(int descriptor) {
    return tell<&CallRecorder::synced>(::syscall(SYS_fsync, descriptor), descriptor);
}
int fdatasync(int descriptor) {
    return tell<&CallRecorder::synced>(::syscall(SYS_fdatasync, descriptor), descriptor);
}

int ftruncate(int descriptor, off_t size) noexcept {
    return tell<&CallRecorder::truncated>(::syscall(SYS_ftruncate, descriptor, size), descriptor, size);
}
[[gnu::alias("ftruncate")]] int ftruncate64(int descriptor, off64_t size) noexcept;

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : mode_t(0);
    va_end(rest);
    const int descriptor = int(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
    if (descriptor >= 0 && (flags & O_TRUNC) != 0) tell<&CallRecorder::truncated>(0, descriptor, 0);
    return descriptor;
}
[[gnu::alias("open")]] int open64(const char* path, int flags, ...);

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    return tell<&CallRecorder::renamed>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags), from,
                                        to);
}
int rename(const char* from, const char* to) noexcept {
    return renameat2(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int unlink(const char* path) noexcept {
    return tell<&CallRecorder::removed>(::syscall(SYS_unlinkat, AT_FDCWD, path, 0), path);
}
int rmdir(const char* path) noexcept {
    return tell<&CallRecorder::removed>(::syscall(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR), path);
}
int mkdir(const char* path, mode_t mode) noexcept {
    return tell<&CallRecorder::folderMade>(::syscall(SYS_mkdirat, AT_FDCWD, path, mode), path);
}

}  // extern "C"

}  // namespace test
