#include "ui/WaitCursor.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>
#include <QPointer>
#include <QtMath>

#include "ui/Terminal.h"

namespace ui {
namespace {

constexpr QSize kMarkSize(28, 28);
constexpr int kDots = 8;
constexpr qreal kCircle = 8;
constexpr qreal kDot = 2.5;
constexpr int kFrameMs = 100;
/// Work that is done earlier shows no mark: it would only flash.
constexpr int kPatienceMs = 200;
constexpr QColor kColour(0x1f, 0x66, 0xb8);

/// A circle of dots, one of them dark. It takes no touches.
class BusyMark : public QWidget {
  public:
    explicit BusyMark(QWidget* terminal) : QWidget(terminal) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setGeometry(QRect({terminal->width() - kMarkSize.width() - 2, 2}, kMarkSize));
        sinceStart_.start();
        timer_.start(kFrameMs, this);
    }

    void advance() {
        if (sinceStart_.elapsed() < kPatienceMs ||
            (sinceFrame_.isValid() && sinceFrame_.elapsed() < kFrameMs))
            return;
        sinceFrame_.start();
        dark_ = (dark_ + 1) % kDots;
        raise();
        show();
        repaint();
    }

  protected:
    void timerEvent(QTimerEvent*) override { advance(); }
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawEllipse(rect());
        painter.translate(QRectF(rect()).center());
        for (int dot = 0; dot < kDots; ++dot) {
            QColor colour = kColour;
            colour.setAlphaF(float((dot - dark_ - 1 + 2 * kDots) % kDots + 1) / kDots);
            painter.setBrush(colour);
            const qreal angle = 2 * M_PI * dot / kDots;
            painter.drawEllipse(QPointF(kCircle * qSin(angle), -kCircle * qCos(angle)), kDot, kDot);
        }
    }

  private:
    QElapsedTimer sinceStart_;
    QElapsedTimer sinceFrame_;
    QBasicTimer timer_;
    int dark_ = 0;
};

int waiting = 0;

QPointer<BusyMark>& mark() {
    static QPointer<BusyMark> current;
    return current;
}

}  // namespace

WaitCursor::WaitCursor() {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    if (++waiting == 1 && Terminal::current() != nullptr) mark() = new BusyMark(Terminal::current());
}

WaitCursor::~WaitCursor() {
    if (--waiting == 0) delete mark();
    QGuiApplication::restoreOverrideCursor();
}

void WaitCursor::alive() {
    if (mark()) mark()->advance();
}

}  // namespace ui
