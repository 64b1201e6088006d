#include "platform/termdev/PaperRoll.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSaveFile>
#include <utility>

#include "platform/Device.h"
#include "platform/Trace.h"

namespace platform::termdev {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kEnlarged = 4;
constexpr int kQuickCompression = 85;  // of 100, where 100 does not compress: white paper packs well anyway

QString textFile() {
    return device::folder() + u"/roll.txt"_s;
}

QString pictureFile() {
    return device::folder() + u"/roll.png"_s;
}

}  // namespace

int PaperRoll::open() {
    isOpen_ = true;
    return 1;
}

int PaperRoll::close() {
    if (!isOpen_) return 0;
    isOpen_ = false;
    if (!line_.glyphs.isEmpty()) endLine();
    if (lines_.isEmpty()) return 1;
    const bool isTextWritten = writeText();
    if (!isTextWritten) trace(u"the paper roll's text could not be written");
    const bool isPictureWritten = !hasFonts() || writePicture();
    if (!isPictureWritten) trace(u"the paper roll's picture could not be written");
    lines_.clear();
    return isTextWritten && isPictureWritten;
}

int PaperRoll::initialise() {
    return setSize(0);
}

int PaperRoll::setSize(int mode) {
    isEnlarged_ = mode == kEnlarged;
    return isOpen_;
}

int PaperRoll::print(QStringView text) {
    if (!isOpen_) {
        trace(u"printing without an open device");
        return 0;
    }
    int columns = line_.columns();
    for (const char32_t character : text.toUcs4()) {
        if (character == u'\n') {
            endLine();
            columns = 0;
            continue;
        }
        const Glyph glyph{character, isEnlarged_};
        if (columns + glyph.columns() > kPaperColumns) {
            endLine();
            columns = 0;
        }
        line_.glyphs << glyph;
        columns += glyph.columns();
    }
    return 1;
}

int PaperRoll::feed(int lines) {
    if (!isOpen_) return 0;
    if (!line_.glyphs.isEmpty()) endLine();
    for (int i = 0; i < lines; ++i) lines_ << PaperLine();
    return 1;
}

void PaperRoll::endLine() {
    lines_ << std::exchange(line_, {});
}

bool PaperRoll::writeText() const {
    QByteArray bytes;
    for (const PaperLine& line : lines_) bytes += paperText(line).toUtf8() + '\n';
    QFile file(textFile());
    return file.open(QIODevice::WriteOnly | QIODevice::Append) && file.write(bytes) == bytes.size() &&
           file.flush();
}

bool PaperRoll::writePicture() const {
    const QImage before(pictureFile());
    const int start = before.width() == kPaperDots ? before.height() : 0;
    int height = start;
    for (const PaperLine& line : lines_) height += line.dots();

    QImage strip(kPaperDots, height, QImage::Format_Grayscale8);
    strip.fill(Qt::white);
    QPainter painter(&strip);
    if (start > 0) painter.drawImage(0, 0, before);
    int top = start;
    for (const PaperLine& line : lines_) {
        paintLine(painter, line, top);
        top += line.dots();
    }
    painter.end();
    if (height > kRollDots) strip = strip.copy(0, height - kRollDots, kPaperDots, kRollDots);

    QSaveFile file(pictureFile());
    return file.open(QIODevice::WriteOnly) && strip.save(&file, "PNG", kQuickCompression) && file.commit();
}

QString rollText() {
    QFile file(textFile());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void resetRoll() {
    QFile::remove(textFile());
    QFile::remove(pictureFile());
}

}  // namespace platform::termdev
