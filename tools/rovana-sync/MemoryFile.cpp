#include "rovana-sync/MemoryFile.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace terminal_sync {

MemoryFile::MemoryFile(QByteArrayView content) : descriptor_(::memfd_create("rovana", MFD_CLOEXEC)) {
    // A key that others may read is taken by nobody.
    bool isWritten = descriptor_ >= 0 && ::fchmod(descriptor_, S_IRUSR | S_IWUSR) == 0;
    for (qsizetype done = 0; isWritten && done < content.size();) {
        const ssize_t more = ::write(descriptor_, content.data() + done, std::size_t(content.size() - done));
        isWritten = more > 0;
        done += more;
    }
    if (!isWritten) throw std::system_error(errno, std::generic_category(), "no file in memory");
}

MemoryFile::~MemoryFile() {
    ::close(descriptor_);
}

}  // namespace terminal_sync
