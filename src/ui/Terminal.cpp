#include "ui/Terminal.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QStyleHints>

#include "platform/Trace.h"

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

/// The touches of a double one are not further apart than this many pixels.
constexpr qreal kFinger = 24;

QPointer<Terminal>& currentTerminal() {
    static QPointer<Terminal> terminal;
    return terminal;
}

ScreenFactory& screenFactory() {
    static ScreenFactory factory;
    return factory;
}

}  // namespace

Terminal::Terminal(QWidget* parent) : QWidget(parent) {
    setFixedSize(kScreenSize);
    setFocusPolicy(Qt::StrongFocus);
    setAutoFillBackground(true);
    setPalette(QPalette(Qt::white));
    currentTerminal() = this;
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { keepFocusInFront(now); });
}

Terminal::~Terminal() {
    // The focus still moves while the widgets below go, when this is no terminal any more.
    disconnect(qApp, nullptr, this, nullptr);
    for (const Entry& entry : std::as_const(stack_)) {
        if (entry.screen) entry.screen->setParent(nullptr);
    }
    stack_.clear();
}

Terminal* Terminal::current() {
    return currentTerminal();
}

void Terminal::show(Screen* screen) {
    // A finger that is still down presses nothing below.
    if (top() != nullptr) {
        for (QAbstractButton* button : top()->findChildren<QAbstractButton*>()) button->setDown(false);
    }
    stack_.append({screen, focusWidget()});
    // Taking a new parent makes the screen forget which control wanted the focus.
    const QPointer<QWidget> wanted = screen->focusWidget();
    screen->setParent(this);
    screen->setGeometry(rect());
    screen->show();
    screen->raise();
    if (wanted) {
        wanted->setFocus();
    } else {
        setFocus();
    }
    changeTop();
}

void Terminal::remove(Screen* screen) {
    const auto at = std::find_if(stack_.begin(), stack_.end(),
                                 [screen](const Entry& entry) { return entry.screen == screen; });
    if (at == stack_.end()) return;
    const QPointer<QWidget> focusBelow = at->focusBelow;
    const bool wasTop = at == stack_.end() - 1;
    stack_.erase(at);
    screen->hide();
    screen->setParent(nullptr);
    if (!wasTop) return;
    if (focusBelow) {
        focusBelow->setFocus();
    } else {
        setFocus();
    }
    changeTop();
}

void Terminal::changeTop() {
    ++changes_;
    Q_EMIT topChanged(top());
}

void Terminal::closeAll() {
    for (qsizetype i = stack_.size() - 1; i >= 0; --i) {
        if (stack_[i].screen) stack_[i].screen->close(Screen::Cancelled);
    }
}

bool Terminal::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    const bool isPress = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick;
    const bool isPointer = isPress || type == QEvent::MouseMove || type == QEvent::MouseButtonRelease;
    if (!isPointer && type != QEvent::KeyPress) return false;
    auto* widget = qobject_cast<QWidget*>(watched);
    if (widget == nullptr || (widget != this && !isAncestorOf(widget))) return false;
    if (isPress) {
        workWithKeys(false);
    } else if (type == QEvent::KeyPress) {
        const int key = static_cast<const QKeyEvent*>(event)->key();
        // These press what the ring stands on, so they do not bring it.
        if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Space && key != Qt::Key_Escape)
            workWithKeys(true);
    }
    const Screen* front = top();
    const bool isInFront = front != nullptr && (widget == front || front->isAncestorOf(widget));
    if (front == nullptr || widget == this) return false;
    if (!isInFront || front->isClosing()) return true;
    if (isPress) return !isMeant(static_cast<const QMouseEvent&>(*event));
    return isPointer ? !touch_.isMeant : !isMeant(static_cast<const QKeyEvent&>(*event));
}

/// False for the second of two quick touches at one place when the first was on another dialog: the finger
/// did not mean what has come under it. So are those that follow as quickly.
bool Terminal::isMeant(const QMouseEvent& press) {
    const QPointF place = press.globalPosition();
    return isMeant({.ms = press.timestamp(), .place = place},
                   (place - touch_.place).manhattanLength() <= kFinger, &touch_);
}

/// The same of Enter and Esc, which answer whatever dialog is in front: a key that bounces or is struck
/// twice.
bool Terminal::isMeant(const QKeyEvent& press) {
    const int key = press.key() == Qt::Key_Enter ? int(Qt::Key_Return) : press.key();
    const bool isSame = key == key_.key && (key == Qt::Key_Return || key == Qt::Key_Escape);
    return isMeant({.ms = press.timestamp(), .key = key}, isSame, &key_);
}

bool Terminal::isMeant(Press press, bool isSame, Press* last) const {
    // A control that does not want a press hands it on to its parent.
    if (press.ms == last->ms && press.place == last->place && press.key == last->key) return last->isMeant;
    const bool isQuick =
        isSame && press.ms - last->ms <= quint64(QGuiApplication::styleHints()->mouseDoubleClickInterval());
    press.isMeant = !isQuick || last->changes == changes_;
    press.changes = press.isMeant ? changes_ : last->changes;
    *last = press;
    return press.isMeant;
}

void Terminal::keyPressEvent(QKeyEvent* event) {
    // Keys that no control takes belong to the dialog in front, whatever has the focus.
    Screen* front = top();
    // What the dialog does not take comes back here and ends here. Another key may come first: the one on its
    // way can open a dialog and return only when that is closed.
    if (front == nullptr || event == forwarded_ || front->isAncestorOf(focusWidget()))
        return QWidget::keyPressEvent(event);
    if (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab) return QWidget::keyPressEvent(event);
    QKeyEvent copy(event->type(), event->key(), event->modifiers(), event->text(), event->isAutoRepeat());
    copy.setTimestamp(event->timestamp());
    const QScopedValueRollback<const QKeyEvent*> forwarding(forwarded_, &copy);
    QApplication::sendEvent(front, &copy);
}

bool Terminal::focusNextPrevChild(bool next) {
    return top() != nullptr && top()->focusNextPrevChild(next);
}

void Terminal::keepFocusInFront(QWidget* now) {
    Screen* front = top();
    if (front == nullptr || now == nullptr || now == this || !isAncestorOf(now) || front->isAncestorOf(now))
        return;
    setFocus();
}

void setScreenFactory(ScreenFactory factory) {
    screenFactory() = std::move(factory);
}

std::unique_ptr<Screen> makeScreen(int dialogId) {
    return screenFactory() ? screenFactory()(dialogId) : nullptr;
}

Screen::Result runScreen(int dialogId) {
    Screen::Result result = Screen::Cancelled;
    for (int next = dialogId; next != 0;) {
        const std::unique_ptr<Screen> screen = makeScreen(next);
        if (!screen) {
            platform::trace(u"no screen for dialog %1"_s.arg(next));
            return Screen::Cancelled;
        }
        result = screen->run();
        next = screen->successor();
    }
    return result;
}

}  // namespace ui
