#pragma once

#include <QChar>
#include <QList>
#include <QString>

#include "platform/termdev/Printer.h"

namespace platform::termdev {

inline constexpr int kPaperColumns = 32;
inline constexpr int kColumnDots = 12;   ///< A column of the head's 384 dots.
inline constexpr int kLineDots = 30;     ///< 24 dots of glyph and 6 between the lines.
inline constexpr int kRollDots = 20000;  ///< roll.png keeps this much of the paper's end, about 2.5 m.

/// Columns that one character takes in the normal size: 2 from code 128 on, else 1.
constexpr int columnsOf(QChar character) {
    return character.unicode() >= 128 ? 2 : 1;
}

/// The printer of a machine without one: the paper goes on in two files of the device folder, roll.txt and
/// roll.png, both written when the device closes. The picture needs a QGuiApplication; without one there is
/// only the text.
///
/// A line longer than the paper goes on in the next one. In the text, an enlarged line stands between 【 and
/// 】, its leading blanks doubled: it cannot be taken for a normal line, keeps its letters together for a
/// search, and starts in the column where it starts on paper.
class PaperRoll : public Printer {
  public:
    int open() override;
    int close() override;
    int initialise() override;
    int setSize(int mode) override;
    int print(QStringView text) override;
    int feed(int lines) override;

  private:
    struct Glyph {
        QChar character;
        bool isEnlarged;
        int columns() const { return columnsOf(character) * (isEnlarged ? 2 : 1); }
    };
    using Line = QList<Glyph>;

    static bool isEnlarged(const Line& line);
    static QString text(const Line& line);
    void endLine();
    bool writeText() const;
    bool writePicture() const;

    bool isOpen_ = false;
    bool isEnlarged_ = false;
    Line line_;
    QList<Line> lines_;
};

/// The paper printed so far, as text; empty for none.
QString rollText();

/// Tears the paper off: removes roll.txt and roll.png.
void resetRoll();

}  // namespace platform::termdev
