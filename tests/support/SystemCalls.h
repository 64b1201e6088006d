#pragma once

#include <sys/types.h>
#include <QString>
#include <QStringList>

namespace test {

/// While it lives, the calls of this process that change files in a folder, or below it, go through here:
/// they are noted, and one of them may fail. Databases and locks are left alone.
class SystemCalls {
  public:
    explicit SystemCalls(const QString& folder);
    ~SystemCalls();
    SystemCalls(const SystemCalls&) = delete;
    SystemCalls& operator=(const SystemCalls&) = delete;

    /// What was called since the last time, such as "write a.txt.unfinished", "sync a.txt.unfinished",
    /// "rename a.txt", "sync ." and "remove a.txt.unfinished", names relative to the folder.
    QStringList take();

    /// The `number`th noted call from here on, counted from 0, finds a broken disk.
    void failAt(int number);
    /// No write takes more than so many bytes.
    void shortenWrites(qsizetype bytes);
};

/// Hears of every call of this process that has changed a file, databases and all, when it was made.
class CallObserver {
  public:
    virtual ~CallObserver() = default;
    virtual void written(int file, const void* bytes, size_t size, off_t at) = 0;
    virtual void truncated(int file, off_t size) = 0;
    virtual void synced(int file) = 0;
    virtual void renamed(const QByteArray& from, const QByteArray& to) = 0;
    virtual void removed(const QByteArray& path) = 0;
    virtual void folderMade(const QByteArray& path) = 0;
};

/// The one that hears of them from here on; null for nobody.
void observeCalls(CallObserver* observer);

/// The path of an open file.
QByteArray pathOfDescriptor(int descriptor);

}  // namespace test
