#include "ui/CellDelegate.h"

#include <QApplication>
#include <QPainter>
#include <algorithm>

#include "ui/Fonts.h"
#include "ui/ReportList.h"

namespace ui {
namespace {

constexpr int kCellMargin = 3;
constexpr int kLowerHeight = 12;
constexpr int kLowerType = 11;
constexpr int kSmallestType = 8;

/// The largest type, from `pixels` down, in which the text fits that width on one line.
QFont fitted(const QString& text, QFont font, int pixels, int smallest, int width) {
    for (; pixels >= smallest; --pixels) {
        font.setPixelSize(pixels);
        if (QFontMetrics(font).horizontalAdvance(text) <= width) break;
    }
    font.setPixelSize(std::max(pixels, smallest));
    return font;
}

/// The text on lines of that width, broken between words, or else after any of its syllables: in a narrow
/// column a word alone can be too wide.
QStringList wrapped(const QString& text, const QFontMetrics& metrics, int width, bool isByWord) {
    QStringList lines{QString()};
    for (qsizetype from = 0, next = 0; from < text.size(); from = next) {
        const qsizetype blank = text.indexOf(u' ', from);
        next = !isByWord ? from + 1 : blank < 0 ? text.size() : blank + 1;
        const QString piece = text.sliced(from, next - from);
        const bool isFull = metrics.horizontalAdvance((lines.last() + piece).trimmed()) > width;
        if (isFull && !lines.last().isEmpty()) lines.append(QString());
        if (piece != u" " || !lines.last().isEmpty()) lines.last() += piece;
    }
    for (QString& line : lines) line = line.trimmed();
    return lines;
}

CellDetail detailOf(const QModelIndex& index) {
    return static_cast<const RowsModel*>(index.model())->cellDetail(index.row(), index.column());
}

}  // namespace

/// How a cell's own text is set: on lines as high as the type itself.
struct CellDelegate::Type {
    QFont font;
    QStringList lines;
    QSize size;
};

CellDelegate::CellDelegate(ReportList* list) : QStyledItemDelegate(list), list_(*list) {}

int CellDelegate::textWidth(const QModelIndex& index) const {
    // The grid takes a pixel of the column.
    return list_.columnWidth(index.column()) - 2 * kCellMargin - 1;
}

CellDelegate::Type CellDelegate::upperType(const QString& text, QFont font, const QModelIndex& index,
                                           bool isAlone) const {
    constexpr int kSmallestOneLineType = 10;
    constexpr int kLargestWrappedType = 12;
    const int height = height_ - 1 - (isAlone ? 0 : kLowerHeight);
    const int width = textWidth(index);
    font = fitted(text, font, font.pixelSize(), kSmallestOneLineType, width);
    const QSize size(QFontMetrics(font).horizontalAdvance(text), QFontMetrics(font).height());
    if (size.width() <= width) return {font, {text}, size};
    QStringList lines;
    for (int pixels = kLargestWrappedType; pixels >= kSmallestType; --pixels) {
        font.setPixelSize(pixels);
        const QFontMetrics metrics(font);
        const auto fits = [&](const QString& line) { return metrics.horizontalAdvance(line) <= width; };
        for (const bool isByWord : {true, false}) {
            lines = wrapped(text, metrics, width, isByWord);
            if (lines.size() * pixels <= height && std::ranges::all_of(lines, fits))
                return {font, lines, {width, int(lines.size()) * pixels}};
        }
    }
    return {font, lines, {width, int(lines.size()) * kSmallestType}};
}

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    constexpr QColor kLowerColour(0x4a, 0x5a, 0x6a);
    constexpr QColor kMarkColour(0xc0, 0x32, 0x2d);
    QStyleOptionViewItem cell(option);
    initStyleOption(&cell, index);
    cell.rect.setHeight(std::min(cell.rect.height(), height_ - 1));
    cell.state &= ~(QStyle::State_HasFocus | QStyle::State_MouseOver);
    QApplication::style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, &list_);
    const bool isChosen = cell.state.testFlag(QStyle::State_Selected);
    const CellDetail lower = detailOf(index);
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
    painter->setPen(cell.palette.color(isChosen ? QPalette::HighlightedText : QPalette::Text));
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

QSize CellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const CellDetail lower = detailOf(index);
    QSize size = upperType(index.data().toString(), option.font, index, lower.text.isEmpty()).size;
    if (!lower.text.isEmpty()) {
        const QFont font = fitted(lower.text, option.font, kLowerType, kSmallestType, textWidth(index));
        size.setWidth(std::max(size.width(), QFontMetrics(font).horizontalAdvance(lower.text)));
        size.rheight() += kLowerHeight;
    }
    return size + QSize(2 * kCellMargin + 1, 0);
}

}  // namespace ui
