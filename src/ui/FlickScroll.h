#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QPointF>

class QAbstractScrollArea;
class QMouseEvent;

namespace ui {

/// Lets a finger scroll an area by dragging it, and lets it run on after a flick. A touch that does not move
/// is told when the finger is lifted, so a drag chooses nothing and no part of a touch is left for what it
/// opens. The area itself sees none of it.
class FlickScroll : public QObject {
    Q_OBJECT

  public:
    /// `area` owns the object.
    explicit FlickScroll(QAbstractScrollArea* area);

  Q_SIGNALS:
    /// The places are in the viewport.
    void tapped(QPoint place);
    /// The second touch of a double one; tapped() has told the first.
    void tappedAgain(QPoint place);

  protected:
    bool eventFilter(QObject* viewport, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    bool press(const QMouseEvent& event);
    bool move(const QMouseEvent& event);
    bool release(const QMouseEvent& event);
    /// Scrolls by as many pixels. False when the area has no further way to go.
    bool scroll(QPointF pixels);

    QAbstractScrollArea& area_;
    enum class Finger { Up, Resting, Dragging } finger_ = Finger::Up;
    bool isAgain_ = false;     ///< The touch is the second of a double one.
    bool hasStopped_ = false;  ///< The touch ended a flick, and is no click.
    QPointF last_;
    quint64 lastMs_ = 0;
    QPointF speed_;  ///< Pixels per millisecond.
    QPointF rest_;   ///< What scrolling by whole pixels has left over.
    QBasicTimer timer_;
};

}  // namespace ui
