#include "rovana-play/Hand.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QQueue>
#include <QTest>
#include <QWindow>
#include <functional>
#include <memory>

#include "rovana-play/DisplayHand.h"
#include "ui/Terminal.h"

namespace pilot {
namespace {

/// Two touches this far apart are never a double one, two this near always are.
constexpr int kBetweenTouchesMs = 10000;
constexpr int kBetweenDoubleMs = 120;

std::unique_ptr<DisplayHand>& onDisplay() {
    static std::unique_ptr<DisplayHand> hand;
    return hand;
}

int now = 0;      ///< The display's clock, in milliseconds.
int touched = 0;  ///< How often a finger came down.

QQueue<std::function<void(QWindow*)>>& waiting() {
    static QQueue<std::function<void(QWindow*)>> events;
    return events;
}

void handOver();

void wakeUp() {
    QMetaObject::invokeMethod(qApp, &handOver, Qt::QueuedConnection);
}

void handOver() {
    if (waiting().isEmpty()) return;
    const auto event = waiting().dequeue();
    // Before the event, which may open a dialog and return only when that is closed.
    if (!waiting().isEmpty()) wakeUp();
    const ui::Terminal* terminal = ui::Terminal::current();
    if (terminal != nullptr) event(terminal->window()->windowHandle());
}

void later(std::function<void(QWindow*)> event) {
    waiting().enqueue(std::move(event));
    if (waiting().size() == 1) wakeUp();
}

void pointer(QEvent::Type type, QPoint place) {
    if (type == QEvent::MouseButtonPress) ++touched;
    if (onDisplay()) return onDisplay()->point(type, place, now);
    const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    const auto cause = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    later([=, time = now](QWindow* window) {
        qt_handleMouseEvent(window, place, window->mapToGlobal(place), held, cause, type, Qt::NoModifier,
                            time);
    });
}

void tap(QPoint place) {
    constexpr int kHeldMs = 60;
    pointer(QEvent::MouseButtonPress, place);
    now += kHeldMs;
    pointer(QEvent::MouseButtonRelease, place);
}

}  // namespace

void useDisplay() {
    onDisplay() = std::make_unique<DisplayHand>();
}

int touches() {
    return touched;
}

bool isHandBusy() {
    return onDisplay() ? onDisplay()->isBusy() : !waiting().isEmpty();
}

void touch(QPoint place) {
    now += kBetweenTouchesMs;
    tap(place);
}

void touchTwice(QPoint place) {
    touch(place);
    now += kBetweenDoubleMs;
    tap(place);
}

void slide(QPoint from, QPoint to) {
    // So long that a drag is no flick.
    constexpr int kRestMs = 400;
    constexpr int kMoveMs = 16;
    constexpr int kMoves = 8;
    now += kBetweenTouchesMs;
    pointer(QEvent::MouseButtonPress, from);
    for (int move = 1; move <= kMoves; ++move) {
        now += kMoveMs;
        pointer(QEvent::MouseMove, from + (to - from) * move / kMoves);
    }
    now += kRestMs;
    pointer(QEvent::MouseButtonRelease, to);
}

void strike(Qt::Key key) {
    if (onDisplay()) return onDisplay()->strike(key);
    now += kBetweenTouchesMs;
    const QString text = key < Qt::Key_Escape ? QString(QChar(ushort(key))).toLower() : QString();
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        later([=, time = now](QWindow* window) {
            QKeyEvent event(type, key, Qt::NoModifier, text);
            event.setTimestamp(quint64(time));
            QCoreApplication::sendEvent(window, &event);
        });
    }
}

}  // namespace pilot
