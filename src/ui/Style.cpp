#include "ui/Style.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

namespace ui {
namespace {

constexpr qreal kRound = 2;

/// One colour with so much of another in it.
QColor mixed(const QColor& colour, const QColor& with, qreal part) {
    const auto mix = [part](int a, int b) { return int(a + (b - a) * part); };
    return {mix(colour.red(), with.red()), mix(colour.green(), with.green()),
            mix(colour.blue(), with.blue())};
}

void drawFace(const QStyleOption& option, QPainter* painter) {
    const QColor face = option.palette.color(QPalette::Button);
    const QRectF area = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    QLinearGradient gradient(area.topLeft(), area.bottomLeft());
    gradient.setColorAt(0, face.lighter(118));
    gradient.setColorAt(1, face.darker(102));
    painter->setPen(option.palette.color(QPalette::Window).darker(140));
    painter->setBrush(option.state & (QStyle::State_Sunken | QStyle::State_On) ? QBrush(face.darker(110))
                                                                               : QBrush(gradient));
    painter->drawRoundedRect(area, kRound, kRound);
}

void drawFocus(const QStyleOption& option, QPainter* painter) {
    constexpr qreal kGlow = 0.16;
    const QColor highlight = option.palette.color(QPalette::Highlight).darker(125);
    const QRectF outline = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter->setPen(mixed(option.palette.color(QPalette::Base), highlight, kGlow));
    painter->drawRoundedRect(outline.adjusted(1, 1, -1, -1), kRound, kRound);
    painter->setPen(highlight);
    painter->drawRoundedRect(outline, kRound, kRound);
}

}  // namespace

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const {
    const bool isFocused = element == PE_FrameLineEdit && option->state.testFlag(State_HasFocus);
    if (!isFocused && element != PE_PanelButtonCommand)
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (isFocused) {
        QStyleOption plain(*option);
        plain.state.setFlag(State_HasFocus, false);
        QProxyStyle::drawPrimitive(element, &plain, painter, widget);
        drawFocus(*option, painter);
    } else {
        drawFace(*option, painter);
    }
    painter->restore();
}

void prepareStyle() {
    if (QApplication::style()->name() == u"fusion") QApplication::setStyle(new Style);
}

}  // namespace ui
