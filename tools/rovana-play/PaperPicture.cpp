#include "rovana-play/PaperPicture.h"

#include <QPainter>
#include <utility>

#include "platform/termdev/PaperLine.h"

namespace pilot {

QImage paperPicture(const QStringList& texts) {
    using namespace platform::termdev;
    // Dots of white.
    constexpr int kMargin = 16;
    QList<PaperLine> lines;
    int height = 2 * kMargin;
    for (const QString& text : texts) height += lines.emplace_back(readPaperText(text)).dots();
    QImage paper(kPaperDots + 2 * kMargin, height, QImage::Format_Grayscale8);
    paper.fill(Qt::white);
    QPainter painter(&paper);
    painter.drawRect(paper.rect().adjusted(0, 0, -1, -1));
    painter.translate(kMargin, kMargin);
    int top = 0;
    for (const PaperLine& line : std::as_const(lines)) {
        paintLine(painter, line, top);
        top += line.dots();
    }
    painter.end();
    return paper;
}

}  // namespace pilot
