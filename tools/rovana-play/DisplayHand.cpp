#include "rovana-play/DisplayHand.h"

#include <QCoreApplication>
#include <QHash>
#include <QWindow>
#include <utility>

#include "ui/Terminal.h"

namespace pilot {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Between touches at nearly one place, so that they are no double one; others need not wait.
constexpr int kApartMs = 450;
constexpr int kNear = 60;
/// Within a gesture time runs quicker, so that a busy machine does not make two touches of a double one.
constexpr int kQuicker = 4;

QString keyName(Qt::Key key) {
    static const QHash<Qt::Key, QString> names = {
        {Qt::Key_Return, u"Return"_s},     {Qt::Key_Escape, u"Escape"_s}, {Qt::Key_Tab, u"Tab"_s},
        {Qt::Key_Backtab, u"shift+Tab"_s}, {Qt::Key_Space, u"space"_s},   {Qt::Key_Backspace, u"BackSpace"_s},
        {Qt::Key_Delete, u"Delete"_s},     {Qt::Key_Up, u"Up"_s},         {Qt::Key_Down, u"Down"_s},
        {Qt::Key_Left, u"Left"_s},         {Qt::Key_Right, u"Right"_s},   {Qt::Key_Home, u"Home"_s},
        {Qt::Key_End, u"End"_s},           {Qt::Key_PageUp, u"Prior"_s},  {Qt::Key_PageDown, u"Next"_s}};
    return names.value(key, QString(QChar(ushort(key))).toLower());
}

QWindow* window() {
    return ui::Terminal::current()->window()->windowHandle();
}

}  // namespace

DisplayHand::DisplayHand() {
    tool_.setProcessChannelMode(QProcess::ForwardedChannels);
    qApp->installEventFilter(this);
}

void DisplayHand::point(QEvent::Type type, QPoint place, int time) {
    const bool isNear = (place - place_).manhattanLength() <= kNear;
    const int elapsed = (time - time_) / kQuicker;
    const int pause = elapsed < kApartMs ? elapsed : isNear ? kApartMs : 0;
    time_ = time;
    place_ = place;
    if (pause > 0) add({u"sleep"_s, QString::number(pause / 1000.0)}, 0);
    const QPoint there = window()->mapToGlobal(place) * window()->devicePixelRatio();
    add({u"mousemove"_s, QString::number(there.x()), QString::number(there.y())}, 0);
    if (type == QEvent::MouseButtonPress) add({u"mousedown"_s, u"1"_s}, 1);
    if (type == QEvent::MouseButtonRelease) add({u"mouseup"_s, u"1"_s}, 1);
}

void DisplayHand::strike(Qt::Key key) {
    // Enter or Esc again is no bounce.
    const bool isAnswer = key == Qt::Key_Return || key == Qt::Key_Escape;
    if (std::exchange(key_, key) == key && isAnswer) add({u"sleep"_s, QString::number(kApartMs / 1000.0)}, 0);
    add({u"key"_s, keyName(key)}, 2);
}

void DisplayHand::add(const QStringList& arguments, int events) {
    // Without a window manager nobody else gives the window the keyboard.
    if (arguments_.isEmpty()) {
        arguments_ << u"windowfocus"_s << QString::number(window()->winId());
        QMetaObject::invokeMethod(this, &DisplayHand::run, Qt::QueuedConnection);
    }
    arguments_ += arguments;
    expected_ += events;
}

void DisplayHand::run() {
    tool_.waitForFinished();
    tool_.start(u"xdotool"_s, std::exchange(arguments_, {}));
}

bool DisplayHand::eventFilter(QObject* watched, QEvent* event) {
    if (!watched->isWindowType() || expected_ == 0) return false;
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::KeyPress:
        case QEvent::KeyRelease: --expected_; return false;
        default: return false;
    }
}

}  // namespace pilot
