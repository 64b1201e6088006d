#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QPointF>
#include <QPointingDevice>

class QAbstractScrollArea;
class QMouseEvent;

namespace ui {

/// Lets a finger scroll an area by dragging it, and lets it run on after a flick. A touch that does not move
/// reaches the area as a click when the finger is lifted, so a drag chooses nothing.
class FlickScroll : public QObject {
    Q_OBJECT

  public:
    /// `area` owns the object.
    explicit FlickScroll(QAbstractScrollArea* area);

  protected:
    bool eventFilter(QObject* viewport, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    bool press(const QMouseEvent& event);
    bool move(const QMouseEvent& event);
    bool release(const QMouseEvent& event);
    /// Hands the area the press that was kept from it.
    void replayPress(const QMouseEvent& event);
    /// Scrolls by as many pixels. False when the area has no further way to go.
    bool scroll(QPointF pixels);

    QAbstractScrollArea& area_;
    enum class Finger { Up, Resting, Dragging } finger_ = Finger::Up;
    /// The replayed press comes from a device of its own: from the real one it would end that one's double
    /// click.
    QPointingDevice replaying_;
    bool isReplaying_ = false;  ///< The click is on its way to the area.
    bool hasStopped_ = false;   ///< The touch ended a flick, and is no click.
    QPointF last_;
    quint64 lastMs_ = 0;
    QPointF speed_;  ///< Pixels per millisecond.
    QPointF rest_;   ///< What scrolling by whole pixels has left over.
    QBasicTimer timer_;
};

}  // namespace ui
