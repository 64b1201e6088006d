#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QTimer>
#include <QWidget>
#include <cstdio>

namespace bench {

/// Waits for the first paint of a widget, then writes "painted N" on standard output, N being the most memory
/// that the process has held so far in KiB, and ends the program.
class FirstPaint : public QObject {
  public:
    explicit FirstPaint(QWidget* watched) : QObject(watched) { watched->installEventFilter(this); }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            // The children are painted and the window is shown before a timer runs.
            QTimer::singleShot(0, this, [] {
                std::printf("painted %lld\n", peakKibibytes());
                std::fflush(stdout);
                QCoreApplication::quit();
            });
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    static long long peakKibibytes() {
        QFile status(QStringLiteral("/proc/self/status"));
        if (!status.open(QIODevice::ReadOnly)) return 0;
        for (const QByteArray& line : status.readAll().split('\n')) {
            // "VmHWM:     12345 kB"
            if (line.startsWith("VmHWM:")) return line.mid(6).trimmed().split(' ').first().toLongLong();
        }
        return 0;
    }
};

}  // namespace bench
