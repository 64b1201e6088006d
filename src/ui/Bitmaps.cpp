#include "ui/Bitmaps.h"

#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace ui {
namespace {

using namespace Qt::Literals::StringLiterals;

QString resourcePath(int number) {
    return u":/bitmaps/%1.svg"_s.arg(number);
}

/// The size that the picture's outermost element, its first line, gives. No more is read: a screen asks for
/// the size of all its buttons before it draws the first.
QSize readSize(int number) {
    QFile file(resourcePath(number));
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QByteArray line = file.readLine();
    const auto attribute = [&](QByteArrayView name) {
        const qsizetype value = line.indexOf(name) + name.size();
        return line.sliced(value, line.indexOf('"', value) - value).toInt();
    };
    return {attribute(" width=\""), attribute(" height=\"")};
}

class PictureIcon : public QIconEngine {
  public:
    explicit PictureIcon(int number) : number_(number) {}

    void paint(QPainter* painter, const QRect& area, QIcon::Mode, QIcon::State) override {
        QSvgRenderer(resourcePath(number_)).render(painter, area);
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

}  // namespace

QSize bitmapSize(int number) {
    static QHash<int, QSize> sizes;
    auto known = sizes.find(number);
    if (known == sizes.end()) known = sizes.insert(number, readSize(number));
    return *known;
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

QIcon icon(int number) {
    return QIcon(new PictureIcon(number));
}

}  // namespace ui
