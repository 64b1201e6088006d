#pragma once

#include <QProxyStyle>

namespace ui {

/// The library's style without its two translucent lines, a light inside the face of what opens a list and a
/// glow inside the frame that has the focus. On a display of many pixels the library hands pieces of such a
/// line to threads: to start and to wake those takes a tenth of the start, and more on a busy machine.
class Style : public QProxyStyle {
  public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

/// Takes it where the library chose its own style rather than the desktop's. Call once, before the first
/// screen.
void prepareStyle();

}  // namespace ui
