#include "ui/Bitmaps.h"

#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

QString resourcePath(int number) {
    return u":/bitmaps/%1.svg"_s.arg(number);
}

}  // namespace

QSize bitmapSize(int number) {
    return QSvgRenderer(resourcePath(number)).defaultSize();
}

QPixmap bitmap(int number, qreal pixelRatio) {
    const QString key = u"bitmap-%1-%2"_s.arg(number).arg(pixelRatio);
    QPixmap picture;
    if (QPixmapCache::find(key, &picture)) return picture;
    QSvgRenderer renderer(resourcePath(number));
    if (!renderer.isValid()) return {};
    picture = QPixmap(renderer.defaultSize() * pixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    renderer.render(&painter);
    painter.end();
    picture.setDevicePixelRatio(pixelRatio);
    QPixmapCache::insert(key, picture);
    return picture;
}

}  // namespace ui
