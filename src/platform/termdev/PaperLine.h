#pragma once

#include <QList>
#include <QString>
#include <QStringView>

class QPainter;

namespace platform::termdev {

inline constexpr int kPaperColumns = 32;
inline constexpr int kColumnDots = 12;  ///< A column of the head's 384 dots.
inline constexpr int kLineDots = 30;    ///< 24 dots of glyph and 6 between the lines.
inline constexpr int kPaperDots = kPaperColumns * kColumnDots;

/// Columns that one character takes in the normal size: 2 for each UTF-16 unit from code 128 on, else 1.
constexpr int columnsOf(char32_t character) {
    return character >= 0x10000 ? 4 : character >= 128 ? 2 : 1;
}

struct Glyph {
    char32_t character;
    bool isEnlarged;

    int columns() const { return columnsOf(character) * (isEnlarged ? 2 : 1); }
};

/// One line of paper.
struct PaperLine {
    QList<Glyph> glyphs;
    bool isFed = false;  ///< Blank paper that no text asked for.

    bool isEnlarged() const;
    int columns() const;
    /// Height on paper in dots; a line with an enlarged glyph is twice as high.
    int dots() const { return isEnlarged() ? 2 * kLineDots : kLineDots; }
};

/// The line as roll.txt has it, without its end. An enlarged line stands between 【 and 】, its leading
/// blanks doubled: it cannot be taken for a normal line, keeps its letters together for a search, and starts
/// in the column where it starts on paper.
QString paperText(const PaperLine& line);

/// The line that paperText was given; a text without both marks is a normal line.
PaperLine readPaperText(QStringView text);

/// Draws the line with its upper edge at `top`, each glyph in its columns whatever the font makes of it.
/// Needs a QGuiApplication.
void paintLine(QPainter& painter, const PaperLine& line, int top);

/// True when there is an application with fonts to draw by.
bool hasFonts();

}  // namespace platform::termdev
