#include "platform/OwnerOnly.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <QDirIterator>
#include <QFile>

#include "platform/SystemReason.h"
#include "platform/Trace.h"

namespace platform {

void keepToOwner() {
    ::umask(077);
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
#ifndef __SANITIZE_ADDRESS__
    // A core that goes to a program knows no limit. The sanitizer's leak check has to look into the process.
    ::prctl(PR_SET_DUMPABLE, 0);
#endif
}

int tightenFiles(const QString& folder) {
    using namespace Qt::Literals::StringLiterals;
    int failures = 0;
    QDirIterator entries(folder, QDir::Files | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        const QByteArray name = QFile::encodeName(path);
        struct stat status = {};
        if (::lstat(name.constData(), &status) != 0) continue;
        if (!S_ISREG(status.st_mode) && !S_ISSOCK(status.st_mode)) continue;
        if ((status.st_mode & 077) == 0) continue;
        if (::chmod(name.constData(), status.st_mode & 0700) == 0) continue;
        ++failures;
        trace(u"%1 stays open to others: %2"_s.arg(path, systemReason()));
    }
    return failures;
}

}  // namespace platform
