#pragma once

#include <QAbstractTableModel>
#include <QBasicTimer>
#include <QDeadlineTimer>
#include <QString>
#include <QTableView>
#include <functional>
#include <span>

#include "platform/Rows.h"

namespace ui {

/// What a row says below its cells, at its left and at its right edge.
struct RowDetail {
    QString left;
    QString right;
};

/// What stands in smaller type below the text of a cell; an empty text for nothing.
struct CellDetail {
    QString text;
    bool isMarked = false;  ///< In the colour of what needs a look.
};

class CellDelegate;

/// The rows of a list, shown without being copied.
class RowsModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    using QAbstractTableModel::QAbstractTableModel;

    void setTitles(const QStringList& titles);
    void setAlignments(const QList<Qt::Alignment>& alignments) { alignments_ = alignments; }
    void setRows(platform::Rows rows);
    /// Empties it without a word to the view.
    void forgetRows() { rows_ = {}; }
    /// The same rows and more behind them.
    void growTo(platform::Rows rows);
    const platform::Rows& rows() const { return rows_; }
    void setDetail(std::function<RowDetail(const platform::Rows& rows, int row)> detail);
    /// Empty texts without one.
    RowDetail detail(int row) const { return detail_ ? detail_(rows_, row) : RowDetail(); }
    bool hasDetail() const { return bool(detail_); }
    using CellDetails = std::function<CellDetail(const platform::Rows& rows, int row, int column)>;
    void setCellDetails(CellDetails details);
    CellDetail cellDetail(int row, int column) const {
        return cellDetails_ ? cellDetails_(rows_, row, column) : CellDetail();
    }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    QStringList titles_;
    QList<Qt::Alignment> alignments_;
    platform::Rows rows_;
    std::function<RowDetail(const platform::Rows& rows, int row)> detail_;
    CellDetails cellDetails_;
};

/// One column of a list.
struct ListColumn {
    QString title;
    int width;  ///< Pixels at scale 1.
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
};

/// A list in columns with grid lines, in which a whole row is chosen.
class ReportList : public QTableView {
    Q_OBJECT

  public:
    explicit ReportList(QWidget* parent);
    ~ReportList() override;

    void setColumns(std::span<const ListColumn> columns);
    /// Replaces all rows and takes the selection away. A narrowed list stays so.
    void setRows(platform::Rows rows);
    /// The same with the rows of the source, of which the first are there at once; the others are read while
    /// nothing else is to do, and before the list is narrowed or goes to its end.
    void readRows(platform::RowSource source);
    /// Reads what the source has left.
    void readToEnd() { readOn(QDeadlineTimer(QDeadlineTimer::Forever)); }
    /// The rows that were set or have been read so far.
    const platform::Rows& rows() const { return all_; }
    /// Says whether a row of the rows that were set is shown.
    using Filter = std::function<bool(const platform::Rows& rows, int row)>;
    /// Shows only the rows that go through `filter`, all without one, and takes the selection away. Rows are
    /// counted as they were set all the same.
    void narrow(Filter filter);
    void clear() { setRows({}); }
    /// What stands in the list while it has no row: what to do, on lines of its own.
    void setEmptyText(const QString& text);

    /// Says the second line of a row among `rows`.
    using Detail = std::function<RowDetail(const platform::Rows& rows, int row)>;
    /// Gives every row a second line over the width of the list, wherever its columns are scrolled to.
    /// `detail` is asked for the rows that are painted, no others.
    void setDetail(Detail detail);
    /// Makes the rows that high and gives cells a line below their text; `details` is asked in the same way.
    void setCellDetails(int rowHeight, RowsModel::CellDetails details);
    /// What the second line in that place of the list takes, in pixels; empty without one.
    QSize detailSize(int place) const;

    int rowCount() const { return model_->rowCount(); }
    /// The row chosen last; -1 when there is none.
    int selectedRow() const;
    /// Chooses the row, without saying so, and brings it into view; nothing for a row outside the list.
    void showChosen(int row);

  Q_SIGNALS:
    /// A row was chosen by a tap or with keys.
    void rowClicked(int row);
    /// The same, by a tap alone.
    void rowTapped(int row);
    /// The same, with the column that was tapped.
    void cellTapped(int row, int column);
    /// The chosen row was tapped once more, quickly.
    void rowDoubleClicked(int row);
    /// The list was tapped where no row is.
    void emptyPartClicked();
    /// A text was keyed on the list. Where nobody hears of it the text falls through.
    void typed(const QString& text);
    /// narrow() has taken the choice away.
    void narrowed();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

  private:
    void showRows();
    void readPieces(QDeadlineTimer until);
    void readOn(QDeadlineTimer until);
    void paintEmptyText();
    void paintDetail(QPainter& painter, int place) const;
    QRect detailArea(int place) const;
    void choose(int row, bool isByKey);
    void tap(QPoint place, bool isAgain);

    /// The row that stands in that place of what is shown.
    int rowAtPlace(int place) const { return filter_ ? shown_.value(place, -1) : place; }

    RowsModel* model_;
    QString emptyText_;
    CellDelegate* cells_;
    platform::Rows all_;
    platform::RowSource more_;  ///< What has not been read yet.
    QBasicTimer idle_;
    Filter filter_;
    QList<int> shown_;  ///< The rows that go through the filter.
};

}  // namespace ui
