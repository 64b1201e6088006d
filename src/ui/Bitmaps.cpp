#include "ui/Bitmaps.h"

#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <future>
#include <system_error>
#include <utility>
#include <vector>

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

QString keyOf(int number, qreal pixelRatio) {
    return u"bitmap-%1-%2"_s.arg(number).arg(pixelRatio);
}

QImage draw(int number, qreal pixelRatio) {
    QSvgRenderer renderer(resourcePath(number));
    if (!renderer.isValid()) return {};
    QImage picture(renderer.defaultSize() * pixelRatio, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    renderer.render(&painter);
    return picture;
}

/// What drawAhead() was asked for and nobody has asked for since.
QHash<QString, std::shared_future<QImage>>& ahead() {
    static QHash<QString, std::shared_future<QImage>> pictures;
    return pictures;
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

void drawAhead(std::span<const int> numbers, qreal pixelRatio) try {
    std::vector<std::pair<int, std::promise<QImage>>> drawn;
    QHash<QString, std::shared_future<QImage>> waiting;
    for (const int number : numbers)
        waiting[keyOf(number, pixelRatio)] =
            drawn.emplace_back(number, std::promise<QImage>()).second.get_future();
    static std::future<void> drawing;
    drawing = std::async(std::launch::async, [drawn = std::move(drawn), pixelRatio]() mutable {
        for (auto& [number, picture] : drawn) picture.set_value(draw(number, pixelRatio));
    });
    ahead() = waiting;
} catch (const std::system_error&) {
    // No further thread is to be had: each is drawn when it is asked for.
}

QPixmap bitmap(int number, qreal pixelRatio) {
    const QString key = keyOf(number, pixelRatio);
    QPixmap picture;
    if (QPixmapCache::find(key, &picture)) return picture;
    const std::shared_future<QImage> waiting = ahead().take(key);
    picture = QPixmap::fromImage(waiting.valid() ? waiting.get() : draw(number, pixelRatio));
    if (picture.isNull()) return {};
    picture.setDevicePixelRatio(pixelRatio);
    QPixmapCache::insert(key, picture);
    return picture;
}

QIcon icon(int number) {
    return QIcon(new PictureIcon(number));
}

}  // namespace ui
