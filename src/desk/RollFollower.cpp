#include "desk/RollFollower.h"

#include <sys/stat.h>

#include <QFile>
#include <QStringTokenizer>
#include <algorithm>

#include "platform/Device.h"

namespace desk {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::termdev::PaperLine;

constexpr qint64 kMostBytes = 64 * 1024;

QString rollFile() {
    return platform::device::folder() + u"/roll.txt"_s;
}

}  // namespace

RollFollower::RollFollower(QObject* parent) : QObject(parent) {
    // The folder is watched as well: the first slip makes the file, and a full one is put aside for a new
    // one.
    watcher_.addPath(platform::device::folder());
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &RollFollower::look);
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, &RollFollower::look);
}

QList<PaperLine> RollFollower::earlierPaper() {
    return readOn();
}

void RollFollower::look() {
    const QList<PaperLine> lines = readOn();
    if (!lines.isEmpty()) Q_EMIT printed(lines);
}

QList<PaperLine> RollFollower::readOn() {
    const QString path = rollFile();
    struct stat known {};
    const bool isThere = ::stat(QFile::encodeName(path).constData(), &known) == 0;
    const quint64 number = isThere ? quint64(known.st_ino) : 0;
    if (number != file_ || known.st_size < read_) read_ = 0;
    file_ = number;
    if (!isThere) return {};
    if (!watcher_.files().contains(path)) watcher_.addPath(path);

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    const qint64 start = std::max(read_, file.size() - kMostBytes);
    const bool isCut = start > read_;
    file.seek(start);
    const QByteArray bytes = file.read(kMostBytes);
    // A line that is not written to its end yet waits for the next look.
    const qsizetype end = bytes.lastIndexOf('\n') + 1;
    read_ = start + end;
    const QString text = QString::fromUtf8(bytes.first(end));
    QList<PaperLine> lines;
    for (const QStringView line : QStringTokenizer(text, u'\n')) {
        lines.append(platform::termdev::readPaperText(line));
    }
    lines.removeLast();
    if (isCut && !lines.isEmpty()) lines.removeFirst();
    return lines;
}

}  // namespace desk
