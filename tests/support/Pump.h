#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>

namespace test {

/// An application with fonts, for those tests of a program that come without one.
inline void needApplication() {
    if (QCoreApplication::instance()) return;
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    static QGuiApplication application(count, arguments);
}

/// Runs the event loop until `isDone` says so; false when it has not within ten seconds.
template <typename IsDone>
bool pump(IsDone isDone) {
    QElapsedTimer waited;
    waited.start();
    while (!isDone()) {
        if (waited.elapsed() > 10'000) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

}  // namespace test
