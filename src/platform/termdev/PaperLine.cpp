#include "platform/termdev/PaperLine.h"

#include <QFont>
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <numeric>

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

qsizetype indentOf(QStringView text) {
    return std::ranges::find_if(text, [](QChar character) { return character != u' '; }) - text.begin();
}

}  // namespace

bool PaperLine::isEnlarged() const {
    return std::ranges::any_of(glyphs, &Glyph::isEnlarged);
}

int PaperLine::columns() const {
    return std::accumulate(glyphs.begin(), glyphs.end(), 0,
                           [](int columns, const Glyph& glyph) { return columns + glyph.columns(); });
}

QString paperText(const PaperLine& line) {
    QString text;
    for (const Glyph& glyph : line.glyphs) text += QString::fromUcs4(&glyph.character, 1);
    if (!line.isEnlarged()) return text;
    const qsizetype indent = indentOf(text);
    return QString(2 * indent, u' ') + kEnlargedStart + text.mid(indent) + kEnlargedEnd;
}

PaperLine readPaperText(QStringView text) {
    const qsizetype indent = indentOf(text);
    const QStringView marked = text.sliced(indent);
    const bool isEnlarged =
        marked.size() >= 2 && marked.front() == kEnlargedStart && marked.back() == kEnlargedEnd;
    PaperLine line;
    if (isEnlarged) line.glyphs.fill({U' ', true}, indent / 2);
    for (const char32_t character : (isEnlarged ? marked.sliced(1).chopped(1) : text).toUcs4()) {
        line.glyphs.append({character, isEnlarged});
    }
    return line;
}

bool hasFonts() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

void paintLine(QPainter& painter, const PaperLine& line, int top) {
    const QFont normalFont = printerFont(kGlyphDots);
    const QFont enlargedFont = printerFont(2 * kGlyphDots);
    int left = 0;
    for (const Glyph& glyph : line.glyphs) {
        const int width = glyph.columns() * kColumnDots;
        const int height = glyph.isEnlarged ? 2 * kGlyphDots : kGlyphDots;
        painter.setFont(glyph.isEnlarged ? enlargedFont : normalFont);
        // The cell, not the font, gives the place: whatever font there is, the columns stay true.
        painter.drawText(QRect(left, top + (line.dots() - height) / 2, width, height),
                         Qt::AlignCenter | Qt::TextDontClip, QString::fromUcs4(&glyph.character, 1));
        left += width;
    }
}

}  // namespace platform::termdev
