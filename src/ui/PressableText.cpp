#include "ui/PressableText.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "ui/BitmapButton.h"

namespace ui {

PressableText::PressableText(QWidget* parent) : QLabel(parent) {
    setFocusPolicy(Qt::TabFocus);
}

void PressableText::mousePressEvent(QMouseEvent* event) {
    event->accept();
}

void PressableText::mouseReleaseEvent(QMouseEvent* event) {
    if (rect().contains(event->position().toPoint())) Q_EMIT pressed();
}

void PressableText::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
        Q_EMIT pressed();
    } else {
        QLabel::keyPressEvent(event);
    }
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
    if (!hasFocus()) return;
    QPainter painter(this);
    paintFocusRing(&painter, rect());
}

}  // namespace ui
