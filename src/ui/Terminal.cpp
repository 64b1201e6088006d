#include "ui/Terminal.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScopedValueRollback>

#include "platform/Trace.h"

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

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
    Q_EMIT topChanged(screen);
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
    Q_EMIT topChanged(top());
}

void Terminal::closeAll() {
    for (qsizetype i = stack_.size() - 1; i >= 0; --i) {
        if (stack_[i].screen) stack_[i].screen->close(Screen::Cancelled);
    }
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
