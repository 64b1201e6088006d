#include "app/LoginWait.h"

#include <QFile>
#include <QString>
#include <algorithm>

#include "platform/Device.h"
#include "platform/Trace.h"
#include "platform/WholeFile.h"

namespace app {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

/// More failures than that wait no longer, and need not be told apart.
constexpr int kMostCounted = 1000;

/// Counts on where the file cannot be written; for the device folder of the time.
struct Memory {
    QString folder;
    int failures = 0;
};

int& remembered() {
    static Memory memory;
    if (memory.folder != platform::device::folder()) memory = {platform::device::folder()};
    return memory.failures;
}

QString path() {
    return platform::device::folder() + u"/login-failures"_s;
}

int failures() {
    QFile file(path());
    const int counted = file.open(QIODevice::ReadOnly) ? file.read(16).trimmed().toInt() : 0;
    return std::clamp(std::max(counted, remembered()), 0, kMostCounted);
}

}  // namespace

std::chrono::milliseconds enterLoginTry() {
    constexpr int kFreeTries = 3;
    constexpr int kLongestWait = 10;
    const int before = failures();
    remembered() = std::min(before + 1, kMostCounted);
    // On disk before the wait begins.
    QString error;
    if (!platform::writeWholeFile(path(), QByteArray::number(remembered()) + '\n', &error))
        platform::trace(u"the failed logins are not kept: "_s + error);
    if (before < kFreeTries) return 0ms;
    return std::min(kLongestWait, 1 << std::min(before - kFreeTries, 4)) * 1s;
}

void loginSucceeded() {
    remembered() = 0;
    if (QFile::exists(path()) && !QFile::remove(path()))
        platform::trace(u"the failed logins are still counted"_s);
}

}  // namespace app
