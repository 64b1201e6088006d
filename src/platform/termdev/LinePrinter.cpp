#include "platform/termdev/LinePrinter.h"

#include <QString>
#include <algorithm>
#include <utility>

#include "platform/Trace.h"

namespace platform::termdev {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kEnlarged = 4;

bool isCombining(QChar character) {
    const ushort code = character.unicode();
    return (code >= 0x1100 && code <= 0x11FF) || (code >= 0xA960 && code <= 0xA97F) ||
           (code >= 0xD7B0 && code <= 0xD7FF) || character.isMark();
}

int columnsOfText(QStringView text) {
    int columns = 0;
    for (const QChar character : text) columns += columnsOf(character.unicode());
    return columns;
}

/// The line with its syllables composed and as wide as before.
QString composed(QStringView line) {
    QString text = line.toString().normalized(QString::NormalizationForm_C);
    const int freed = columnsOfText(line) - columnsOfText(text);
    const qsizetype start =
        std::ranges::find_if(line, isCombining) - line.begin();  // As before in both up to here.
    // The end of a column of the layout is where two blanks meet; without one, a word's end must do.
    qsizetype gap = text.indexOf(u"  "_s, start);
    if (gap < 0) gap = text.indexOf(u' ', start);
    if (gap >= 0 && freed > 0) text.insert(gap, QString(freed, u' '));
    return text;
}

}  // namespace

int LinePrinter::open() {
    isOpen_ = true;
    return 1;
}

int LinePrinter::close() {
    if (!isOpen_) return 0;
    isOpen_ = false;
    if (!line_.glyphs.isEmpty()) endLine();
    if (lines_.isEmpty()) return 1;
    return putOut(std::exchange(lines_, {}));
}

int LinePrinter::initialise() {
    return setSize(0);
}

int LinePrinter::setSize(int mode) {
    isEnlarged_ = mode == kEnlarged;
    return isOpen_;
}

int LinePrinter::print(QStringView text) {
    if (!isOpen_) {
        trace(u"printing without an open device");
        return 0;
    }
    QString wholeText;
    if (std::ranges::any_of(text, isCombining)) {
        QStringList lines;
        for (const QStringView line : text.split(u'\n')) lines << composed(line);
        wholeText = lines.join(u'\n');
        text = wholeText;
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

int LinePrinter::feed(int lines) {
    if (!isOpen_) return 0;
    if (!line_.glyphs.isEmpty()) endLine();
    for (int i = 0; i < lines; ++i) lines_ << PaperLine{{}, true};
    return 1;
}

void LinePrinter::endLine() {
    lines_ << std::exchange(line_, {});
}

}  // namespace platform::termdev
