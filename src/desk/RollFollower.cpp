#include "desk/RollFollower.h"

#include <QFile>
#include <QStringTokenizer>

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
    if (QFile::exists(path) && !watcher_.files().contains(path)) watcher_.addPath(path);
    const QString text = QString::fromUtf8(roll_.read(kMostBytes));
    QList<PaperLine> lines;
    for (const QStringView line : QStringTokenizer(text, u'\n')) {
        lines.append(platform::termdev::readPaperText(line));
    }
    lines.removeLast();
    return lines;
}

}  // namespace desk
