#pragma once

#include <sys/types.h>

namespace test {

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
