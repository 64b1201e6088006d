#pragma once

#include <QChar>
#include <QList>
#include <QString>
#include <QStringView>

class QPainter;

/// A line of the roll's paper: as characters with their sizes, as the text that roll.txt keeps of it, and
/// drawn.
namespace platform::termdev {

inline constexpr int kPaperColumns = 32;
inline constexpr int kColumnDots = 12;  ///< A column of the head's 384 dots.
inline constexpr int kLineDots = 30;    ///< 24 dots of glyph and 6 between the lines.
inline constexpr int kPaperDots = kPaperColumns * kColumnDots;

/// Columns that one character takes in the normal size: 2 from code 128 on, else 1.
constexpr int columnsOf(QChar character) {
    return character.unicode() >= 128 ? 2 : 1;
}

struct PaperGlyph {
    QChar character;
    bool isEnlarged;  ///< Double width and height.
    int columns() const { return columnsOf(character) * (isEnlarged ? 2 : 1); }
};

using PaperLine = QList<PaperGlyph>;

/// The line as text, without its end. An enlarged line stands between 【 and 】, its leading blanks doubled:
/// it cannot be taken for a normal line, keeps its letters together for a search, and starts in the column
/// where it starts on paper.
QString paperText(const PaperLine& line);

/// The line that paperText was given; a text without both marks is a normal line.
PaperLine readPaperText(QStringView text);

/// Dots of the line's height, twice kLineDots when anything in it is enlarged.
int paperHeight(const PaperLine& line);

/// Draws the line from `top` on, all in dots; another size is the painter's scale.
void drawPaperLine(QPainter& painter, int top, const PaperLine& line);

}  // namespace platform::termdev
