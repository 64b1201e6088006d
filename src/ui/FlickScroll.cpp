#include "ui/FlickScroll.h"

#include <QAbstractScrollArea>
#include <QMouseEvent>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

namespace ui {
namespace {

constexpr int kFrameMs = 16;

}  // namespace

FlickScroll::FlickScroll(QAbstractScrollArea* area) : QObject(area), area_(*area) {
    area->viewport()->installEventFilter(this);
}

bool FlickScroll::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick: return press(static_cast<const QMouseEvent&>(*event));
        case QEvent::MouseMove: return move(static_cast<const QMouseEvent&>(*event));
        case QEvent::MouseButtonRelease: return release(static_cast<const QMouseEvent&>(*event));
        case QEvent::Wheel: timer_.stop(); return false;
        default: return false;
    }
}

bool FlickScroll::press(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) return true;
    isAgain_ = event.type() == QEvent::MouseButtonDblClick;
    hasStopped_ = timer_.isActive();
    timer_.stop();
    finger_ = Finger::Resting;
    last_ = event.globalPosition();
    lastMs_ = event.timestamp();
    speed_ = rest_ = {};
    return true;
}

bool FlickScroll::move(const QMouseEvent& event) {
    // A finger that moves less than this many pixels presses.
    constexpr qreal kDragDistance = 8;
    // It may have been lifted where nobody told.
    if (!event.buttons().testFlag(Qt::LeftButton)) finger_ = Finger::Up;
    if (finger_ == Finger::Up) return false;
    const QPointF way = last_ - event.globalPosition();
    if (finger_ == Finger::Resting && way.manhattanLength() < kDragDistance) return true;
    finger_ = Finger::Dragging;
    const qreal elapsed = qreal(std::max<quint64>(event.timestamp() - lastMs_, 1));
    speed_ = (speed_ + way / elapsed) / 2;
    last_ = event.globalPosition();
    lastMs_ = event.timestamp();
    scroll(way);
    return true;
}

bool FlickScroll::release(const QMouseEvent& event) {
    // A finger that rests this long before it is lifted does not flick.
    constexpr quint64 kRestMs = 80;
    if (finger_ == Finger::Up || event.button() != Qt::LeftButton) return true;
    const bool isTap = finger_ == Finger::Resting && !hasStopped_;
    const bool isFlick = finger_ == Finger::Dragging && event.timestamp() - lastMs_ < kRestMs;
    finger_ = Finger::Up;
    if (isFlick) timer_.start(kFrameMs, this);
    if (!isTap) return true;
    // Last: it may open a dialog and return only when that is closed.
    const QPoint place = event.position().toPoint();
    isAgain_ ? Q_EMIT tappedAgain(place) : Q_EMIT tapped(place);
    return true;
}

bool FlickScroll::scroll(QPointF pixels) {
    rest_ += pixels;
    const QPoint whole(int(rest_.x()), int(rest_.y()));
    rest_ -= whole;
    const auto moved = [](QScrollBar* bar, int by) {
        const int before = bar->value();
        bar->setValue(before + by);
        return bar->value() != before;
    };
    const bool isMovedAcross = moved(area_.horizontalScrollBar(), whole.x());
    const bool isMovedDown = moved(area_.verticalScrollBar(), whole.y());
    return whole.isNull() || isMovedAcross || isMovedDown;
}

void FlickScroll::timerEvent(QTimerEvent*) {
    // What a frame leaves of the speed, and the speed in pixels per millisecond below which a flick ends.
    constexpr qreal kFriction = 0.94;
    constexpr qreal kSlowest = 0.05;
    speed_ *= kFriction;
    if (!scroll(speed_ * kFrameMs) || std::hypot(speed_.x(), speed_.y()) < kSlowest) timer_.stop();
}

}  // namespace ui
