#include "platform/termdev/EscPos.h"

#include <QImage>
#include <QPainter>
#include <algorithm>

#include "platform/CodePage.h"

namespace platform::termdev {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr char32_t kWonSign = 0x20A9;
constexpr char32_t kWideWonSign = 0xFFE6;
constexpr int kInk = 128;       // Darker than this of 255 is a dot.
constexpr int kMostFeed = 255;  // What one feed command takes.

constexpr QByteArrayView kInitialise("\x1B@\x1C&", 4);
constexpr QByteArrayView kNormalSize("\x1D!\x00", 3);
constexpr QByteArrayView kEnlargedSize("\x1D!\x11", 3);
constexpr QByteArrayView kFeed("\x1B\x64", 2);
constexpr QByteArrayView kRaster("\x1Dv0\x00", 4);
constexpr QByteArrayView kReplacement("\xA1\xE0", 2);  // □

/// The bytes of one character; empty when the printer lacks it.
QByteArray bytesOf(char32_t character, bool isKsx1001Only) {
    // Nothing that a text holds may act as a command.
    if (character < u' ' || character == 0x7F) return " ";
    const QString text = QString::fromUcs4(&(character == kWonSign ? kWideWonSign : character), 1);
    const QByteArray bytes = codepage::encode(text).value_or(QByteArray());
    if (bytes.size() != 2 || !isKsx1001Only) return bytes;
    // KS X 1001 is the upper right quarter of the code page, but for the two rows kept for one's own signs.
    const auto lead = uchar(bytes[0]);
    const bool isStandard = lead >= 0xA1 && lead != 0xC9 && lead < 0xFE && uchar(bytes[1]) >= 0xA1;
    return isStandard ? bytes : QByteArray();
}

QByteArray rasterOf(const PaperLine& line) {
    const int widthBytes = (line.columns() * kColumnDots + 7) / 8;
    QImage image(widthBytes * 8, line.dots(), QImage::Format_Grayscale8);
    image.fill(Qt::white);
    QPainter painter(&image);
    paintLine(painter, line, 0);
    painter.end();

    QByteArray bytes = kRaster.toByteArray();
    for (const int size : {widthBytes, image.height()})
        bytes.append(char(size & 0xFF)).append(char(size >> 8));
    for (int y = 0; y < image.height(); ++y) {
        const uchar* dots = image.constScanLine(y);
        for (int x = 0; x < image.width(); x += 8) {
            int byte = 0;
            for (int bit = 0; bit < 8; ++bit) byte = byte << 1 | (dots[x + bit] < kInk);
            bytes.append(char(byte));
        }
    }
    return bytes;
}

QByteArray textOf(const PaperLine& line, bool isKsx1001Only) {
    QByteArray bytes;
    bool isEnlarged = false;
    for (const Glyph& glyph : line.glyphs) {
        if (glyph.isEnlarged != isEnlarged) bytes += glyph.isEnlarged ? kEnlargedSize : kNormalSize;
        isEnlarged = glyph.isEnlarged;
        const QByteArray character = bytesOf(glyph.character, isKsx1001Only);
        bytes += character;
        for (int i = 0; character.isEmpty() && i < columnsOf(glyph.character); i += 2) bytes += kReplacement;
    }
    bytes += '\n';
    if (isEnlarged) bytes += kNormalSize;
    return bytes;
}

QByteArray cutBytes(PrinterSettings::Cut cut) {
    switch (cut) {
        case PrinterSettings::Cut::Full: return {"\x1DV\x00", 3};
        case PrinterSettings::Cut::Partial: return {"\x1DV\x01", 3};
        case PrinterSettings::Cut::Feed: return {"\x1DV\x42\x00", 4};
        case PrinterSettings::Cut::None: break;
    }
    return {};
}

}  // namespace

QByteArray escPosJob(const QList<PaperLine>& lines, const PrinterSettings& settings) {
    QByteArray bytes = kInitialise.toByteArray();
    int fed = 0;
    const auto feed = [&] {
        for (; fed > 0; fed -= std::min(fed, kMostFeed)) {
            bytes += kFeed;
            bytes += char(std::min(fed, kMostFeed));
        }
    };
    for (const PaperLine& line : lines) {
        if (line.isFed) {
            ++fed;
            continue;
        }
        feed();
        const bool isLacking = std::ranges::any_of(line.glyphs, [&](const Glyph& glyph) {
            return bytesOf(glyph.character, settings.isKsx1001Only).isEmpty();
        });
        bytes += isLacking && hasFonts() ? rasterOf(line) : textOf(line, settings.isKsx1001Only);
    }
    feed();
    return bytes + cutBytes(settings.cut);
}

}  // namespace platform::termdev
