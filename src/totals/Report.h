#pragma once

#include <QList>
#include <QString>

#include "platform/Rows.h"
#include "platform/Won.h"
#include "print/Document.h"

/// A report of the day without a screen: the list, the paper and the office's table are all made from it.
namespace totals {

/// What stands in a column.
enum class Kind { Text, Count, Amount };

struct Column {
    QString title;
    Kind kind = Kind::Text;
    int pixels = 0;           ///< Width in the list, pixels at scale 1; 0 leaves the column out of the list.
    int paper = 0;            ///< Width on paper, columns; 0 leaves it off the paper.
    bool startsLine = false;  ///< A row goes on in a new line of the paper here.
    bool isSummed = false;
};

/// One cell of a row. Counts and amounts (won) are numbers; so their sums saturate and never overflow.
class Cell {
  public:
    Cell(const QString& text) : text_(text) {}  // NOLINT: a row is written as a list of what it holds.
    Cell(platform::Won number) : text_(platform::formatWon(number)), number_(number) {}  // NOLINT

    /// The text; a number as "%d" writes it.
    const QString& text() const { return text_; }
    /// The number; 0 for a text.
    platform::Won number() const { return number_; }

  private:
    QString text_;
    platform::Won number_;
};

/// As many cells as the report has columns.
using Row = QList<Cell>;

/// Rows with sums of their own.
struct Section {
    QString title;  ///< Empty in a report of one section.
    QList<Row> rows;
};

/// The sum of one column over one section, or another figure that the list is shown for.
struct Sum {
    QString label;  ///< The column's title, in a report of several sections with the section's before it.
    platform::Won value;
};

struct Report {
    QString title;     ///< At most print::kTitleColumns wide.
    QString salesman;  ///< As the head shows him.
    QString date;      ///< "yyyy-MM-dd".
    QList<Column> columns;
    QList<Section> sections;  ///< Not added up with each other.
    QList<Sum> results;       ///< What the list shows under it besides; on paper it is among the rows.

    /// True when there is no row.
    bool isEmpty() const;
};

/// The sums of all summed columns, section after section, and the results; 0 for a section without rows.
QList<Sum> sums(const Report& report);

/// The columns of the list, and its rows with grouped thousands. A section with a title begins with a row
/// that has "[title]" in the first column; one without rows is left out.
QList<Column> listColumns(const Report& report);
platform::Rows listRows(const Report& report);

/// The printout: head, column titles, rows, sums, place to sign. A text wider than its column takes a line of
/// its own above its row, a line without content is left out. Without rows the sums are 0.
/// A reprint says so under its title.
print::Document document(const Report& report, bool isReprint = false);

/// The printouts with an empty line between two.
QString paperText(const QList<Report>& reports);

/// The reports as comma-separated values, with the mark by which a spreadsheet opens them as Hangul and an
/// empty line between two: all columns of all rows as plain texts, their titles first, without the sums. With
/// sections of a title the first column says "구분" and the section.
QString csvText(const QList<Report>& reports);

}  // namespace totals
