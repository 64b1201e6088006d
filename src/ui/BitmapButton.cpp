#include "ui/BitmapButton.h"

#include <QApplication>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>
#include <utility>

namespace ui {
namespace {

constexpr QColor kDarkCaption(0x14, 0x20, 0x2b);
constexpr QColor kDisabledCaption(0x6b, 0x77, 0x85);
constexpr QColor kFocusRing(0xf5, 0x9e, 0x0b);
constexpr qreal kDisabledOpacity = 0.45;

/// A menu tile keeps its picture above and its caption below this line.
constexpr int kTileHeight = 50;
constexpr int kTileCaptionTop = 36;
/// The lower lip of a face that is not pressed.
constexpr int kLip = 2;

bool& worksWithKeys() {
    static bool is = false;
    return is;
}

}  // namespace

BitmapButton::BitmapButton(const QString& caption, ButtonBitmaps bitmaps, QWidget* parent)
    : QAbstractButton(parent), bitmaps_(bitmaps) {
    setText(caption);
    setAccessibleName(caption);
    setFont(ui::font(FontHeight::Small));
    setFocusPolicy(Qt::StrongFocus);
    resize(sizeHint());
}

QRect BitmapButton::captionArea() const {
    QRect area = rect().adjusted(1, 0, -1, -kLip);
    if (height() >= kTileHeight && width() > height()) area.setTop(kTileCaptionTop);
    return area.adjusted(2, 0, -2, 0);
}

const BitmapButton::Layout& BitmapButton::layout() const {
    const QRect area = captionArea();
    if (layout_.area == area && layout_.text == text() && layout_.font == font()) return layout_;
    layout_ = {text(), font(), area, Qt::TextWordWrap, {}};
    const QFontMetrics metrics(font());
    for (const QString& word : text().split(u' ', Qt::SkipEmptyParts)) {
        if (metrics.horizontalAdvance(word) > area.width()) layout_.wrapping = Qt::TextWrapAnywhere;
    }
    layout_.bounds = metrics.boundingRect(area, Qt::AlignCenter | layout_.wrapping, text());
    return layout_;
}

QRect BitmapButton::captionBounds() const {
    return layout().bounds.translated(0, isDown() ? 1 : 0);
}

void BitmapButton::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            // The screen's, on every desktop.
            return event->ignore();
        case Qt::Key_Space:
            if (showsFocusRing(*this)) return QAbstractButton::keyPressEvent(event);
            // Nobody could see what it would press.
            return workWithKeys(true);
        default: QAbstractButton::keyPressEvent(event);
    }
}

void BitmapButton::mouseDoubleClickEvent(QMouseEvent* event) {
    if (isRepeated_) mousePressEvent(event);
}

void BitmapButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!isEnabled()) painter.setOpacity(kDisabledOpacity);
    drawKeptBitmap(&painter, isDown() ? bitmaps_.pressed : bitmaps_.normal);
    painter.setOpacity(1);
    painter.setFont(font());
    painter.setPen(!isEnabled()                               ? kDisabledCaption
                   : bitmaps_.caption == CaptionColour::Light ? QColor(Qt::white)
                                                              : kDarkCaption);
    painter.drawText(captionBounds(), Qt::AlignCenter | layout().wrapping, text());
    if (showsFocusRing(*this)) paintFocusRing(&painter, rect());
}

void workWithKeys(bool isWith) {
    if (std::exchange(worksWithKeys(), isWith) == isWith) return;
    if (QWidget* focused = QApplication::focusWidget()) focused->update();
}

bool showsFocusRing(const QWidget& control) {
    return worksWithKeys() && control.hasFocus() && control.isEnabled();
}

void paintFocusRing(QPainter* painter, const QRect& area) {
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(kFocusRing, 2));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(QRectF(area).adjusted(1, 1, -1, -1), 4, 4);
}

}  // namespace ui
