#pragma once

#include <QStyledItemDelegate>

namespace ui {

class ReportList;

/// Paints the cells of a list. A text that is too long for its column is set smaller and at last on several
/// lines: nothing is cut off. Below it stands the cell's detail, if it has one.
class CellDelegate : public QStyledItemDelegate {
    Q_OBJECT

  public:
    explicit CellDelegate(ReportList* list);

    /// What text and detail share, in pixels; what a row has below that is not the cells'.
    void setHeight(int height) { height_ = height; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    /// What both lines need.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    struct Type;
    int textWidth(const QModelIndex& index) const;
    Type upperType(const QString& text, QFont font, const QModelIndex& index, bool isAlone) const;

    ReportList& list_;
    int height_ = 0;
};

}  // namespace ui
