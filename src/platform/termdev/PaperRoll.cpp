#include "platform/termdev/PaperRoll.h"

#include <sys/stat.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "platform/Device.h"
#include "platform/Trace.h"
#include "platform/WholeFile.h"

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

/// Of a long time's paper no more waits than the picture keeps.
void keepEnd(QList<PaperLine>* lines) {
    int height = 0;
    qsizetype first = lines->size();
    while (first > 0 && height < kRollDots) height += (*lines)[--first].dots();
    lines->remove(0, first);
}

bool writePicture(const QList<PaperLine>& lines, const QString& file) {
    int height = 0;
    for (const PaperLine& line : lines) height += line.dots();
    const QImage before = height < kRollDots ? QImage(file) : QImage();
    const int start = before.width() == kPaperDots ? before.height() : 0;
    height += start;

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

    QBuffer picture;
    return strip.save(&picture, "PNG", kQuickCompression) && writeWholeFile(file, picture.data());
}

/// Opens the file for reading; its number in the file system, 0 when it is not there.
quint64 openNumbered(QFile& file) {
    struct stat known {};
    const bool isOpen = file.open(QIODevice::ReadOnly) && ::fstat(file.handle(), &known) == 0;
    return isOpen ? known.st_ino : 0;
}

/// The whole lines from `*place` on, which moves behind them. One that is not written to its end yet waits.
QByteArray readLines(QFile& file, qint64 most, qint64* place) {
    const qint64 start = std::max(*place, file.size() - most);
    const bool isCut = start > *place;
    file.seek(start);
    QByteArray bytes = file.readAll();
    bytes.truncate(bytes.lastIndexOf('\n') + 1);
    *place = start + bytes.size();
    return isCut ? bytes.sliced(bytes.indexOf('\n') + 1) : bytes;
}

}  // namespace

PaperRoll::PaperRoll(qint64 limitBytes, int drawingMs) : limit_(limitBytes) {
    drawing_.setSingleShot(true);
    drawing_.setInterval(drawingMs);
    QObject::connect(&drawing_, &QTimer::timeout, &drawing_, [this] { draw(); });
    if (hasFonts()) {
        QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &drawing_, [this] {
            draw();
            awaitPicture();
        });
    }
}

PaperRoll::~PaperRoll() {
    draw();
    awaitPicture();
}

bool PaperRoll::putOut(const QList<PaperLine>& lines) {
    const bool isTextWritten = writeText(lines, limit_);
    if (!isTextWritten) trace(u"the paper roll's text could not be written");
    if (hasFonts()) {
        undrawn_ += lines;
        keepEnd(&undrawn_);
        if (!drawing_.isActive()) drawing_.start();
    }
    // The text is the paper: a job that is in it must not come out again for a picture's sake.
    return isTextWritten;
}

void PaperRoll::draw() {
    if (undrawn_.isEmpty() || !hasFonts()) return;
    awaitPicture();
    picture_ = std::async(std::launch::async, writePicture, std::exchange(undrawn_, {}), pictureFile());
}

void PaperRoll::awaitPicture() {
    if (picture_.valid() && !picture_.get()) trace(u"the paper roll's picture could not be written");
}

QByteArray RollReader::read(qint64 most) {
    QByteArray bytes;
    QFile file(textFile());
    const quint64 number = openNumbered(file);
    if (number != file_) {
        // What came before the roll turned over.
        QFile older(olderTextFile());
        if (file_ != 0 && openNumbered(older) == file_) bytes = readLines(older, most, &read_);
        file_ = number;
        read_ = 0;
    }
    if (number == 0) return bytes;
    if (file.size() < read_) read_ = 0;
    return bytes + readLines(file, most, &read_);
}

}  // namespace platform::termdev
