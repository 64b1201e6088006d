#include "ui/BitmapButton.h"

#include <QFocusEvent>
#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

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

/// The ring helps who works with keys, also where a screen hands the focus on; a finger knows where it was.
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
    return isDown() ? area.translated(0, 1) : area;
}

int BitmapButton::wrapping() const {
    const QFontMetrics metrics(font());
    const QStringList words = text().split(u' ', Qt::SkipEmptyParts);
    const bool isWordTooWide = std::any_of(words.begin(), words.end(), [&](const QString& word) {
        return metrics.horizontalAdvance(word) > captionArea().width() - 4;
    });
    return isWordTooWide ? Qt::TextWrapAnywhere : Qt::TextWordWrap;
}

QRect BitmapButton::captionBounds() const {
    return QFontMetrics(font()).boundingRect(captionArea().adjusted(2, 0, -2, 0),
                                             Qt::AlignCenter | wrapping(), text());
}

void BitmapButton::focusInEvent(QFocusEvent* event) {
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        worksWithKeys() = true;
    QAbstractButton::focusInEvent(event);
}

void BitmapButton::keyPressEvent(QKeyEvent* event) {
    worksWithKeys() = true;
    QAbstractButton::keyPressEvent(event);
}

void BitmapButton::mousePressEvent(QMouseEvent* event) {
    worksWithKeys() = false;
    QAbstractButton::mousePressEvent(event);
}

void BitmapButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!isEnabled()) painter.setOpacity(kDisabledOpacity);
    painter.drawPixmap(0, 0, bitmap(isDown() ? bitmaps_.pressed : bitmaps_.normal, devicePixelRatioF()));
    painter.setOpacity(1);
    painter.setFont(font());
    painter.setPen(!isEnabled()                               ? kDisabledCaption
                   : bitmaps_.caption == CaptionColour::Light ? QColor(Qt::white)
                                                              : kDarkCaption);
    painter.drawText(captionBounds(), Qt::AlignCenter | wrapping(), text());
    if (hasFocus() && worksWithKeys() && isEnabled()) paintFocusRing(&painter, rect());
}

void paintFocusRing(QPainter* painter, const QRect& area) {
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(kFocusRing, 2));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(QRectF(area).adjusted(1, 1, -1, -1), 4, 4);
}

}  // namespace ui
