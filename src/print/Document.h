#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>
#include <initializer_list>

#include "platform/Won.h"

namespace print {

/// One column of a row: its text, its width in columns and the side on which it stands.
struct Cell {
    QString text;
    int width;
    bool isNumber;  ///< Right-aligned and never cut; else left-aligned and cut to the width.
};

inline Cell name(QStringView text, int width) {
    return {text.toString(), width, false};
}
inline Cell number(QStringView text, int width) {
    return {text.toString(), width, true};
}

/// A printout as lines of the 32-column paper, composed from the blocks that every document of the system is
/// made of. It goes to the printer through printDocument, or as text to a program's output.
class Document {
  public:
    enum class Rule { Thin, Double };

    /// `title`, without line end, is centred in the enlarged size.
    explicit Document(QStringView title);

    /// The title line and the lines of the body, each with its line end.
    const QString& title() const { return title_; }
    const QStringList& lines() const { return lines_; }

    /// Title and body as one text.
    QString text() const { return title_ + lines_.join(QString()); }

    void rule(Rule rule);
    void blank() { line({}); }
    /// One line as it stands, without the blanks at its end.
    void line(QStringView text);
    /// "* 재발행 *", the mark of a paper that was printed before.
    void reprintMark();
    /// A line in the middle of the paper, wrapped when it is too long.
    void centred(QStringView text);
    /// The label in ten columns, a blank, and the text wrapped in the 21 columns beside it. Nothing for an
    /// empty text.
    void labelText(QStringView label, QStringView text);
    /// The label on the left, the figure against the right edge with its unit behind it; below the label
    /// where the two would touch, never cut.
    void labelFigure(QStringView label, QStringView figure, QStringView unit);
    /// The same of an amount in won.
    void labelAmount(QStringView label, platform::Won amount);
    /// The cells side by side. A blank keeps one that fills its column apart from the one before it, at the
    /// cost of the blanks that follow; what the paper's width does not take goes on in a line of its own.
    void row(std::initializer_list<Cell> cells);
    /// A product: its name over the whole width, and at the right edge its size and what one costs; below
    /// the name where they do not fit beside it.
    void itemName(QStringView name, QStringView size, QStringView unitPrice = {});
    /// The place to sign: "라벨:                    (인)" between blank lines.
    void signature(QStringView label);

  private:
    QString title_;
    QStringList lines_;
};

}  // namespace print
