#include "platform/termdev/PaperRoll.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSaveFile>

#include "platform/Device.h"
#include "platform/Trace.h"

namespace platform::termdev {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kQuickCompression = 85;  // of 100, where 100 does not compress: white paper packs well anyway

QString textFile() {
    return device::folder() + u"/roll.txt"_s;
}

QString olderTextFile() {
    return textFile() + u".1"_s;
}

QString pictureFile() {
    return device::folder() + u"/roll.png"_s;
}

bool writeText(const QList<PaperLine>& lines, qint64 limit) {
    QByteArray bytes;
    for (const PaperLine& line : lines) bytes += paperText(line).toUtf8() + '\n';
    QFile file(textFile());
    // Paper that cannot be put aside goes on growing rather than be lost.
    if (file.size() > 0 && file.size() + bytes.size() > limit) {
        QFile::remove(olderTextFile());
        QFile::rename(textFile(), olderTextFile());
    }
    return file.open(QIODevice::WriteOnly | QIODevice::Append, QFile::ReadOwner | QFile::WriteOwner) &&
           file.write(bytes) == bytes.size() && file.flush();
}

bool writePicture(const QList<PaperLine>& lines) {
    const QImage before(pictureFile());
    const int start = before.width() == kPaperDots ? before.height() : 0;
    int height = start;
    for (const PaperLine& line : lines) height += line.dots();

    QImage strip(kPaperDots, height, QImage::Format_Grayscale8);
    strip.fill(Qt::white);
    QPainter painter(&strip);
    if (start > 0) painter.drawImage(0, 0, before);
    int top = start;
    for (const PaperLine& line : lines) {
        paintLine(painter, line, top);
        top += line.dots();
    }
    painter.end();
    if (height > kRollDots) strip = strip.copy(0, height - kRollDots, kPaperDots, kRollDots);

    QSaveFile file(pictureFile());
    return file.open(QIODevice::WriteOnly) && strip.save(&file, "PNG", kQuickCompression) && file.commit();
}

}  // namespace

bool PaperRoll::putOut(const QList<PaperLine>& lines) {
    const bool isTextWritten = writeText(lines, limit_);
    if (!isTextWritten) trace(u"the paper roll's text could not be written");
    const bool isPictureWritten = !hasFonts() || writePicture(lines);
    if (!isPictureWritten) trace(u"the paper roll's picture could not be written");
    return isTextWritten && isPictureWritten;
}

QString rollText() {
    QFile file(textFile());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void resetRoll() {
    for (const QString& name : {textFile(), olderTextFile(), pictureFile()}) QFile::remove(name);
}

}  // namespace platform::termdev
