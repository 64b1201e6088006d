#include "desk/PaperView.h"

#include <QBuffer>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>
#include <QPropertyAnimation>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

#include "platform/WholeFile.h"

namespace desk {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform::termdev;

constexpr int kMostDots = 30000;  // a picture of Qt's ends at 32,767
constexpr int kMarginDots = 40;   // blank paper beside the 384 dots: a roll of 58 mm
constexpr int kWholeDots = kPaperDots + 2 * kMarginDots;
constexpr int kDotsPerInch = 203;
constexpr qreal kMillimetresPerInch = 25.4;
constexpr qreal kPixelsPerDot = 2.0 / 3;  // 8 pixels a column
constexpr int kTooth = 4;
constexpr int kFeedTime = 350;  // milliseconds

qreal millimetres(int dots) {
    return dots * kMillimetresPerInch / kDotsPerInch;
}

/// The sheet with the teeth of the tear bar along its upper edge.
QPainterPath sheet(const QRectF& area) {
    QPainterPath path(area.bottomLeft());
    path.lineTo(area.topLeft());
    for (qreal x = area.left(); x < area.right(); x += 2 * kTooth) {
        path.lineTo(std::min(x + kTooth, area.right()), area.top() - kTooth);
        path.lineTo(std::min(x + 2 * kTooth, area.right()), area.top());
    }
    path.lineTo(area.bottomRight());
    path.closeSubpath();
    return path;
}

}  // namespace

PaperView::PaperView(QWidget* parent) : QAbstractScrollArea(parent) {
    setAccessibleName(u"인쇄 용지 Paper"_s);
    setFocusPolicy(Qt::TabFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMinimumWidth(int(std::ceil(kWholeDots * kPixelsPerDot)) + verticalScrollBar()->sizeHint().width() +
                    2 * frameWidth());
    setMinimumHeight(100);
}

void PaperView::append(const QList<PaperLine>& lines) {
    if (lines.isEmpty()) return;
    lines_ += lines;
    for (const PaperLine& line : lines) height_ += line.dots();
    qsizetype gone = 0;
    while (height_ > kMostDots) height_ -= lines_[gone++].dots();
    lines_.remove(0, gone);

    // A screen reader reads the last paper that came out.
    QStringList words;
    for (const PaperLine& line : lines) words << paperText(line).trimmed();
    setAccessibleDescription(words.join(u'\n'));

    updateScrollBar();
    QScrollBar* bar = verticalScrollBar();
    if (isVisible()) {
        auto* feeding = new QPropertyAnimation(bar, "value", this);
        feeding->setEndValue(bar->maximum());
        feeding->setDuration(kFeedTime);
        feeding->start(QAbstractAnimation::DeleteWhenStopped);
    } else {
        bar->setValue(bar->maximum());
    }
    viewport()->update();
    Q_EMIT changed();
}

void PaperView::tearOff() {
    lines_.clear();
    height_ = 0;
    setAccessibleDescription({});
    updateScrollBar();
    viewport()->update();
    Q_EMIT changed();
}

/// Draws the lines that meet the dots `from` to `to`, the first dot of the paper at the painter's origin.
void PaperView::draw(QPainter& painter, int from, int to) const {
    int top = 0;
    for (const PaperLine& line : lines_) {
        const int bottom = top + line.dots();
        if (bottom > from && top < to) paintLine(painter, line, top);
        top = bottom;
    }
}

bool PaperView::save(const QString& path) const {
    QBuffer file;
    if (!file.open(QIODevice::WriteOnly)) return false;
    const int height = height_ + 2 * kMarginDots;
    QPainter painter;
    if (path.endsWith(u".pdf"_s, Qt::CaseInsensitive)) {
        QPdfWriter writer(&file);
        writer.setCreator(u"Rovana"_s);
        writer.setResolution(kDotsPerInch);
        writer.setPageSize(QPageSize(QSizeF(millimetres(kWholeDots), millimetres(height)),
                                     QPageSize::Millimeter, {}, QPageSize::ExactMatch));
        writer.setPageMargins({});
        if (!painter.begin(&writer)) return false;
        painter.translate(kMarginDots, kMarginDots);
        draw(painter, 0, height_);
        painter.end();
    } else {
        QImage picture(kWholeDots, height, QImage::Format_Grayscale8);
        picture.fill(Qt::white);
        painter.begin(&picture);
        painter.translate(kMarginDots, kMarginDots);
        draw(painter, 0, height_);
        painter.end();
        if (!picture.save(&file, "PNG")) return false;
    }
    return platform::writeWholeFile(path, file.data());
}

void PaperView::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(viewport()->rect(), QColor(0xc9, 0xc4, 0xbb));
    const QSize size = viewport()->size();
    if (lines_.isEmpty()) {
        painter.setPen(QColor(0x4a, 0x46, 0x40));
        painter.drawText(viewport()->rect(), Qt::AlignCenter,
                         u"인쇄한 용지가 여기에 나옵니다\nPrinted slips come out here"_s);
        return;
    }
    const qreal paper = height_ * kPixelsPerDot;
    const qreal width = kWholeDots * kPixelsPerDot;
    const qreal left = std::floor((size.width() - width) / 2);
    // A short paper hangs from the printer at the lower edge.
    const qreal top = std::max(size.height() - paper, qreal(kTooth)) - verticalScrollBar()->value();
    painter.fillPath(sheet(QRectF(left, top, width, size.height() - top)), Qt::white);
    painter.setPen(Qt::black);
    painter.translate(left + kMarginDots * kPixelsPerDot, top);
    painter.scale(kPixelsPerDot, kPixelsPerDot);
    draw(painter, int(-top / kPixelsPerDot), int((size.height() - top) / kPixelsPerDot) + 1);
}

void PaperView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    const bool isAtEnd = verticalScrollBar()->value() == verticalScrollBar()->maximum();
    updateScrollBar();
    if (isAtEnd) verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

void PaperView::updateScrollBar() {
    const int page = viewport()->height();
    const int paper = int(std::ceil(height_ * kPixelsPerDot)) + kTooth;
    verticalScrollBar()->setPageStep(page);
    verticalScrollBar()->setSingleStep(int(kLineDots * kPixelsPerDot));
    verticalScrollBar()->setRange(0, std::max(0, paper - page));
}

}  // namespace desk
