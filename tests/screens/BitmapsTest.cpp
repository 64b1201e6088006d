#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdlib>

#include "support/PrintQt.h"
#include "ui/Bitmaps.h"

namespace test {
namespace {

using namespace Qt::Literals::StringLiterals;

/// The share of colours of pixels that differ by more than so much.
double differing(const QImage& one, const QImage& other, int than) {
    qsizetype count = 0;
    for (qsizetype at = 0; at < one.sizeInBytes(); ++at) {
        if (std::abs(one.constBits()[at] - other.constBits()[at]) > than) ++count;
    }
    return double(count) / double(one.sizeInBytes());
}

TEST(Bitmaps, AreDrawnAsTheirFilesAre) {
    const QDir files(QStringLiteral(ROVANA_TESTS_DIR) + u"/../res/bitmaps"_s);
    const QStringList names = files.entryList({u"*.svg"_s});
    EXPECT_GT(names.size(), 60);
    for (const QString& name : names) {
        QSvgRenderer renderer(files.filePath(name));
        const int number = name.chopped(4).toInt();
        ASSERT_EQ(ui::bitmapSize(number), renderer.defaultSize()) << number;
        for (const qreal scale : {1.0, 2.5, 4.0}) {
            QImage drawn(renderer.defaultSize() * scale, QImage::Format_ARGB32_Premultiplied);
            drawn.fill(Qt::transparent);
            QImage file = drawn;
            QPainter painter(&drawn);
            ui::drawBitmap(&painter, number, drawn.rect());
            painter.end();
            painter.begin(&file);
            renderer.render(&painter);
            painter.end();
            // Corners alone: Qt takes a curve that it draws for up to a quarter of a pixel more or less.
            EXPECT_LT(differing(drawn, file, 8), 0.03) << number << " at " << scale;
            EXPECT_EQ(differing(drawn, file, 64), 0) << number << " at " << scale;
        }
    }
    EXPECT_TRUE(ui::bitmapSize(1).isEmpty()) << "no picture";
}

}  // namespace
}  // namespace test
