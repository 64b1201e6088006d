#include "ui/Screen.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>

#include "ui/ReportList.h"
#include "ui/Terminal.h"

namespace ui {
namespace {

/// Type is not set smaller than this many pixels to make a text fit.
constexpr int kSmallestType = 8;

}  // namespace

Screen::Screen(int id) : id_(id) {
    setObjectName(QString::number(id));
    setFocusPolicy(Qt::NoFocus);
    resize(kScreenSize);
}

Screen::~Screen() {
    // A screen that dies while it runs, at the end of the program, must not stay on the terminal.
    if (Terminal* terminal = Terminal::current()) terminal->remove(this);
}

Screen::Result Screen::run() {
    Terminal* terminal = Terminal::current();
    if (terminal == nullptr) return Cancelled;
    result_ = Cancelled;
    terminal->show(this);
    loop_.exec();
    terminal->remove(this);
    return result_;
}

void Screen::close(Result result) {
    result_ = result;
    loop_.quit();
}

void Screen::closeAndOpen(int dialogId) {
    successor_ = dialogId;
    close(Accepted);
}

QWidget* Screen::control(int controlId) const {
    return findChild<QWidget*>(QString::number(controlId), Qt::FindDirectChildrenOnly);
}

void Screen::adopt(int controlId, QWidget* widget) {
    widget->setParent(this);
    if (controlId != 0) widget->setObjectName(QString::number(controlId));
}

BitmapButton* Screen::addButton(int controlId, const QString& caption, QPoint at, ButtonBitmaps pictures) {
    auto* button = new BitmapButton(caption, pictures, this);
    adopt(controlId, button);
    button->move(at);
    return button;
}

QLabel* Screen::addLabel(int controlId, const QString& text, const QRect& area, FontHeight height,
                         Qt::Alignment alignment) {
    auto* result = place(controlId, new QLabel(text, this), area);
    result->setTextFormat(Qt::PlainText);
    result->setFont(ui::font(height));
    result->setAlignment(alignment);
    return result;
}

QLabel* Screen::addPicture(int controlId, int bitmapNumber, QPoint at) {
    auto* result = place(controlId, new QLabel(this), QRect(at, bitmapSize(bitmapNumber)));
    result->setPixmap(bitmap(bitmapNumber, devicePixelRatioF()));
    return result;
}

ReportList* Screen::addList(int controlId, const QRect& area) {
    return place(controlId, new ReportList(this), area);
}

QLabel* Screen::label(int controlId) const {
    return qobject_cast<QLabel*>(control(controlId));
}

void Screen::setTextColour(QWidget* widget, const QColor& colour) {
    QPalette colours = widget->palette();
    colours.setColor(QPalette::WindowText, colour);
    widget->setPalette(colours);
}

void Screen::setText(int controlId, const QString& text) {
    if (QLabel* target = label(controlId)) target->setText(text);
}

void Screen::setAmount(int controlId, platform::Won amount) {
    setFittedText(controlId, platform::groupThousands(amount), FontHeight::Small);
}

void Screen::setFittedText(int controlId, const QString& text, FontHeight height) {
    QLabel* target = label(controlId);
    if (target == nullptr) return;
    QFont fitted = ui::font(height);
    while (fitted.pixelSize() > kSmallestType &&
           QFontMetrics(fitted).horizontalAdvance(text) > target->contentsRect().width()) {
        fitted.setPixelSize(fitted.pixelSize() - 1);
    }
    target->setFont(fitted);
    target->setText(text);
}

void Screen::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Qt::white);
}

void Screen::keyPressEvent(QKeyEvent* event) {
    BitmapButton* button = nullptr;
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) button = default_;
    if (event->key() == Qt::Key_Escape) button = cancel_;
    // A key held down answers one dialog, not all that open one after the other.
    if (button != nullptr && event->isAutoRepeat()) return;
    if (button == nullptr || !button->isVisible() || !button->isEnabled())
        return QWidget::keyPressEvent(event);
    button->click();
}

bool Screen::focusNextPrevChild(bool next) {
    // Tab stays on this screen: the ones below are covered, not closed.
    QWidget* from = focusWidget() != nullptr ? focusWidget() : this;
    QWidget* candidate = from;
    do {
        candidate = next ? candidate->nextInFocusChain() : candidate->previousInFocusChain();
        if (candidate != this && isAncestorOf(candidate) && (candidate->focusPolicy() & Qt::TabFocus) != 0 &&
            candidate->isVisible() && candidate->isEnabled() && candidate->focusProxy() == nullptr) {
            candidate->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    } while (candidate != from);
    return true;
}

}  // namespace ui
