#include "ui/Picture.h"

#include <QPainter>

#include "ui/Bitmaps.h"

namespace ui {

void Picture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawBitmap(&painter, number_, rect());
}

}  // namespace ui
