#include "ui/TwoLineDelegate.h"

#include <QApplication>
#include <QHeaderView>
#include <QPainter>

#include "ui/Fonts.h"
#include "ui/ReportList.h"

namespace ui {
namespace {

constexpr int kCellMargin = 3;
constexpr int kLowerHeight = 12;
constexpr int kLowerType = 11;
constexpr int kSmallestType = 8;
constexpr int kSmallestOneLineType = 10;
constexpr int kLargestWrappedType = 12;
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

/// The text on lines of that width. A name may break after any of its syllables.
QStringList wrapped(const QString& text, const QFontMetrics& metrics, int width) {
    QStringList lines{QString()};
    for (const QChar character : text) {
        if (metrics.horizontalAdvance(lines.last() + character) > width) lines.append(QString());
        if (character != u' ' || !lines.last().isEmpty()) lines.last() += character;
    }
    return lines;
}

}  // namespace

/// How a cell's own text is set: on lines as high as the type itself.
struct TwoLineDelegate::Type {
    QFont font;
    QStringList lines;
    QSize size;
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

TwoLineDelegate::Type TwoLineDelegate::upperType(const QString& text, QFont font, const QModelIndex& index,
                                                 bool isAlone) const {
    const int height = rowHeight_ - 1 - (isAlone ? 0 : kLowerHeight);
    const int width = textWidth(index);
    font = fitted(text, font, font.pixelSize(), kSmallestOneLineType, width);
    const QSize size(QFontMetrics(font).horizontalAdvance(text), QFontMetrics(font).height());
    if (size.width() <= width) return {font, {text}, size};
    QStringList lines;
    for (int pixels = kLargestWrappedType; pixels >= kSmallestType; --pixels) {
        font.setPixelSize(pixels);
        lines = wrapped(text, QFontMetrics(font), width);
        if (lines.size() * pixels <= height) break;
    }
    return {font, lines, {width, int(lines.size()) * font.pixelSize()}};
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
    const Type type = upperType(cell.text, cell.font, index, lower.text.isEmpty());
    painter->setFont(type.font);
    painter->setPen(isChosen ? QColor(Qt::white) : QColor(Qt::black));
    const int pitch = area.height() / int(type.lines.size());
    const int height = std::min(pitch, type.size.height());
    const int top = area.top() + (area.height() - height * int(type.lines.size())) / 2;
    for (int i = 0; i < type.lines.size(); ++i) {
        painter->drawText(
            QRect(area.left(), top + i * height, area.width(), height),
            int(cell.displayAlignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter | Qt::TextDontClip,
            type.lines[i]);
    }
    painter->restore();
}

QSize TwoLineDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const Line lower = below(index);
    QSize size = upperType(index.data().toString(), option.font, index, lower.text.isEmpty()).size;
    if (!lower.text.isEmpty()) {
        const QFont font = fitted(lower.text, option.font, kLowerType, kSmallestType, textWidth(index));
        size.setWidth(std::max(size.width(), QFontMetrics(font).horizontalAdvance(lower.text)));
        size.rheight() += kLowerHeight;
    }
    return size + QSize(2 * kCellMargin + 1, 0);
}

}  // namespace ui
