#include "ui/TwoLineDelegate.h"

#include <QApplication>
#include <QHeaderView>
#include <QPainter>

#include "ui/Fonts.h"
#include "ui/ReportList.h"

namespace ui {
namespace {

constexpr int kCellMargin = 3;
constexpr int kLowerHeight = 13;
constexpr int kLowerType = 11;
constexpr int kSmallestType = 8;
constexpr int kSmallestOneLineType = 10;
constexpr QColor kLowerColour(0x4a, 0x5a, 0x6a);
constexpr QColor kMarkColour(0xc0, 0x32, 0x2d);

/// The largest type, from `pixels` down, in which the text fits that width on one line.
QFont fitted(const QString& text, QFont font, int pixels, int smallest, int width) {
    for (; pixels >= smallest; --pixels) {
        font.setPixelSize(pixels);
        if (QFontMetrics(font).horizontalAdvance(text) <= width) break;
    }
    font.setPixelSize(std::max(pixels, smallest));
    return font;
}

}  // namespace

/// How a cell's own text is set.
struct TwoLineDelegate::Type {
    QFont font;
    QSize size;
    int flags = 0;
};

TwoLineDelegate::TwoLineDelegate(ReportList* list, int rowHeight, Below below)
    : QStyledItemDelegate(list), list_(*list), rowHeight_(rowHeight), below_(std::move(below)) {
    list->setItemDelegate(this);
    list->verticalHeader()->setMinimumSectionSize(rowHeight);
    list->verticalHeader()->setDefaultSectionSize(rowHeight);
}

TwoLineDelegate::Line TwoLineDelegate::below(const QModelIndex& index) const {
    return below_(static_cast<const RowsModel*>(index.model())->rows(), index.row(), index.column());
}

int TwoLineDelegate::textWidth(const QModelIndex& index) const {
    // The grid takes a pixel of the column.
    return list_.columnWidth(index.column()) - 2 * kCellMargin - 1;
}

TwoLineDelegate::Type TwoLineDelegate::upperType(const QString& text, QFont font,
                                                 const QModelIndex& index) const {
    const int width = textWidth(index);
    font = fitted(text, font, font.pixelSize(), kSmallestOneLineType, width);
    QSize size(QFontMetrics(font).horizontalAdvance(text), QFontMetrics(font).height());
    if (size.width() <= width) return {font, size, 0};
    font.setPixelSize(kSmallestType);
    const int flags = Qt::TextWrapAnywhere;
    return {font, QFontMetrics(font).boundingRect(QRect(0, 0, width, 0), flags, text).size(), flags};
}

void TwoLineDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    QStyleOptionViewItem cell(option);
    initStyleOption(&cell, index);
    cell.state &= ~(QStyle::State_HasFocus | QStyle::State_MouseOver);
    QApplication::style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, &list_);
    const bool isChosen = cell.state.testFlag(QStyle::State_Selected);
    const Line lower = below(index);
    QRect area = cell.rect.adjusted(kCellMargin, 0, -kCellMargin, 0);
    painter->save();
    if (!lower.text.isEmpty()) {
        const QRect place(area.left(), area.bottom() - kLowerHeight, area.width(), kLowerHeight);
        painter->setFont(fitted(lower.text, cell.font, kLowerType, kSmallestType, textWidth(index)));
        painter->setPen(isChosen ? QColor(Qt::white) : lower.isMarked ? kMarkColour : kLowerColour);
        painter->drawText(place, int(cell.displayAlignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter,
                          lower.text);
        area.setBottom(place.top() - 1);
    }
    const Type type = upperType(cell.text, cell.font, index);
    painter->setFont(type.font);
    painter->setPen(isChosen ? QColor(Qt::white) : QColor(Qt::black));
    painter->drawText(area,
                      int(cell.displayAlignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter | type.flags,
                      cell.text);
    painter->restore();
}

QSize TwoLineDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = upperType(index.data().toString(), option.font, index).size;
    const Line lower = below(index);
    if (!lower.text.isEmpty()) {
        const QFont font = fitted(lower.text, option.font, kLowerType, kSmallestType, textWidth(index));
        size.setWidth(std::max(size.width(), QFontMetrics(font).horizontalAdvance(lower.text)));
        size.rheight() += kLowerHeight;
    }
    return size + QSize(2 * kCellMargin + 1, 0);
}

}  // namespace ui
