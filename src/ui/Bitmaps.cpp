#include "ui/Bitmaps.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>
#include <QVarLengthArray>

#include "ui/BitmapRecords.h"

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Null for a number without a picture.
const BitmapRecord* findRecord(int number) {
    const BitmapRecord* record = kBitmapRecords;
    while (record->number != 0 && record->number != number) ++record;
    return record->number != 0 ? record : nullptr;
}

QPointF point(unsigned index) {
    return {kBitmapPoints[2 * index], kBitmapPoints[2 * index + 1]};
}

QBrush brushOf(const BitmapShape& shape) {
    if (shape.stops == 0) return QColor::fromRgba(shape.colour);
    const unsigned ends = shape.firstPoint + shape.points;
    QLinearGradient gradient(point(ends), point(ends + 1));
    for (unsigned i = 0; i < shape.stops; ++i) {
        const BitmapStop& stop = kBitmapStops[shape.firstStop + i];
        gradient.setColorAt(stop.at, QColor::fromRgba(stop.colour));
    }
    return gradient;
}

void drawShape(QPainter* painter, const BitmapShape& shape) {
    painter->setBrush(brushOf(shape));
    if (shape.points == 2) {
        painter->drawRect(QRectF(point(shape.firstPoint), point(shape.firstPoint + 1)));
        return;
    }
    QVarLengthArray<QPointF, 128> corners;
    for (unsigned i = 0; i < shape.points; ++i) corners.append(point(shape.firstPoint + i));
    painter->drawPolygon(corners.constData(), int(corners.size()),
                         shape.isWinding ? Qt::WindingFill : Qt::OddEvenFill);
}

class PictureIcon : public QIconEngine {
  public:
    explicit PictureIcon(int number) : number_(number) {}

    void paint(QPainter* painter, const QRect& area, QIcon::Mode, QIcon::State) override {
        drawBitmap(painter, number_, area);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, picture.rect(), mode, state);
        return picture;
    }
    QIconEngine* clone() const override { return new PictureIcon(number_); }

  private:
    int number_;
};

/// The picture in pixels of a display with that pixel ratio.
QPixmap drawn(int number, qreal pixelRatio) {
    const QString key = u"bitmap-%1-%2"_s.arg(number).arg(pixelRatio);
    QPixmap picture;
    if (QPixmapCache::find(key, &picture)) return picture;
    picture = QPixmap(bitmapSize(number) * pixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawBitmap(&painter, number, picture.rect());
    painter.end();
    QPixmapCache::insert(key, picture);
    return picture;
}

}  // namespace

QSize bitmapSize(int number) {
    const BitmapRecord* const record = findRecord(number);
    return record != nullptr ? QSize(record->width, record->height) : QSize();
}

void drawBitmap(QPainter* painter, int number, const QRectF& area) {
    const BitmapRecord* const record = findRecord(number);
    if (record == nullptr) return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->translate(area.topLeft());
    painter->scale(area.width() / record->width, area.height() / record->height);
    for (unsigned i = 0; i < record->shapes; ++i) drawShape(painter, kBitmapShapes[record->firstShape + i]);
    painter->restore();
}

void drawKeptBitmap(QPainter* painter, int number) {
    const qreal pixelRatio = painter->device()->devicePixelRatio();
    painter->save();
    // Pixel for pixel: what is scaled, if only by one, takes many times as long.
    painter->scale(1 / pixelRatio, 1 / pixelRatio);
    painter->drawPixmap(0, 0, drawn(number, pixelRatio));
    painter->restore();
}

QIcon icon(int number) {
    return QIcon(new PictureIcon(number));
}

}  // namespace ui
