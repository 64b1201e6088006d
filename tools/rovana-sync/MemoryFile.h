#pragma once

#include <QByteArrayView>
#include <string>

namespace terminal_sync {

/// A file that is in memory alone and has no name in any folder, for a library that takes a secret from a
/// file only. It goes with this object.
class MemoryFile {
  public:
    explicit MemoryFile(QByteArrayView content);
    ~MemoryFile();
    Q_DISABLE_COPY_MOVE(MemoryFile)

    /// Where this process opens it.
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

  private:
    int descriptor_;
};

}  // namespace terminal_sync
