#include "platform/termdev/PaperLine.h"

#include <QFont>
#include <QPainter>
#include <algorithm>

namespace platform::termdev {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kGlyphDots = 2 * kColumnDots;
constexpr QChar kEnlargedStart = u'【';
constexpr QChar kEnlargedEnd = u'】';

QFont printerFont(int dots) {
    QFont font(QStringList{u"NanumGothicCoding"_s, u"D2Coding"_s, u"Noto Sans Mono CJK KR"_s});
    font.setStyleHint(QFont::Monospace);
    font.setPixelSize(dots);
    return font;
}

bool isEnlarged(const PaperLine& line) {
    return std::ranges::any_of(line, &PaperGlyph::isEnlarged);
}

qsizetype indentOf(QStringView text) {
    return std::ranges::find_if(text, [](QChar character) { return character != u' '; }) - text.begin();
}

}  // namespace

QString paperText(const PaperLine& line) {
    QString text;
    for (const PaperGlyph& glyph : line) text += glyph.character;
    if (!isEnlarged(line)) return text;
    const qsizetype indent = indentOf(text);
    return QString(2 * indent, u' ') + kEnlargedStart + text.mid(indent) + kEnlargedEnd;
}

PaperLine readPaperText(QStringView text) {
    const qsizetype indent = indentOf(text);
    const QStringView marked = text.sliced(indent);
    const bool isEnlarged =
        marked.size() >= 2 && marked.front() == kEnlargedStart && marked.back() == kEnlargedEnd;
    PaperLine line;
    if (isEnlarged) line.fill({u' ', true}, indent / 2);
    for (const QChar character : isEnlarged ? marked.sliced(1).chopped(1) : text) {
        line.append({character, isEnlarged});
    }
    return line;
}

int paperHeight(const PaperLine& line) {
    return isEnlarged(line) ? 2 * kLineDots : kLineDots;
}

void drawPaperLine(QPainter& painter, int top, const PaperLine& line) {
    static const QFont normalFont = printerFont(kGlyphDots);
    static const QFont enlargedFont = printerFont(2 * kGlyphDots);
    const int lineHeight = paperHeight(line);
    int left = 0;
    for (const PaperGlyph& glyph : line) {
        const int width = glyph.columns() * kColumnDots;
        const int glyphHeight = glyph.isEnlarged ? 2 * kGlyphDots : kGlyphDots;
        painter.setFont(glyph.isEnlarged ? enlargedFont : normalFont);
        // The cell, not the font, gives the place: whatever font there is, the columns stay true.
        painter.drawText(QRect(left, top + (lineHeight - glyphHeight) / 2, width, glyphHeight),
                         Qt::AlignCenter | Qt::TextDontClip, QString(glyph.character));
        left += width;
    }
}

}  // namespace platform::termdev
