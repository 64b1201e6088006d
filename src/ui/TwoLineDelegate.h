#pragma once

#include <QStyledItemDelegate>
#include <functional>

#include "platform/Rows.h"

namespace ui {

class ReportList;

/// Shows a smaller line below the text of a cell. It is asked for when a cell is painted, so a long list
/// costs what is seen of it.
class TwoLineDelegate : public QStyledItemDelegate {
    Q_OBJECT

  public:
    /// What stands below a cell; `rows` are those that the list shows. An empty text for none.
    struct Line {
        QString text;
        bool isMarked = false;  ///< In the colour of what needs a look.
    };
    using Below = std::function<Line(const platform::Rows& rows, int row, int column)>;

    /// Makes the rows of `list`, which owns the object, that high.
    TwoLineDelegate(ReportList* list, int rowHeight, Below below);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    /// What both lines need.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    struct Type;
    Line below(const QModelIndex& index) const;
    int textWidth(const QModelIndex& index) const;
    Type upperType(const QString& text, QFont font, const QModelIndex& index, bool isAlone) const;

    ReportList& list_;
    int rowHeight_;
    Below below_;
};

}  // namespace ui
