#include "ui/PressableText.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <utility>

#include "ui/BitmapButton.h"

namespace ui {

PressableText::PressableText(QWidget* parent) : QLabel(parent) {
    setFocusPolicy(Qt::TabFocus);
}

void PressableText::mousePressEvent(QMouseEvent* event) {
    isDown_ = true;
    event->accept();
}

void PressableText::mouseReleaseEvent(QMouseEvent* event) {
    if (std::exchange(isDown_, false) && rect().contains(event->position().toPoint())) Q_EMIT pressed();
}

void PressableText::keyPressEvent(QKeyEvent* event) {
    const bool isPress =
        event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isPress || !showsFocusRing(*this)) return QLabel::keyPressEvent(event);
    if (!event->isAutoRepeat()) Q_EMIT pressed();
}

void PressableText::focusInEvent(QFocusEvent* event) {
    QLabel::focusInEvent(event);
    update();
}

void PressableText::focusOutEvent(QFocusEvent* event) {
    QLabel::focusOutEvent(event);
    update();
}

void PressableText::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    if (!showsFocusRing(*this)) return;
    QPainter painter(this);
    paintFocusRing(&painter, rect());
}

}  // namespace ui
