#pragma once

#include <QAbstractButton>

#include "ui/Bitmaps.h"
#include "ui/Fonts.h"

namespace ui {

/// A push button with a normal and a pressed picture, as large as its picture, with its caption painted on
/// it.
class BitmapButton : public QAbstractButton {
    Q_OBJECT

  public:
    BitmapButton(const QString& caption, ButtonBitmaps bitmaps, QWidget* parent);

    QSize sizeHint() const override { return bitmapSize(bitmaps_.normal); }

    /// Where the caption is painted; reaches beyond the button when it is too long for it.
    QRect captionBounds() const;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

  private:
    /// A caption as it is laid out on a button that is not pressed.
    struct Layout {
        QString text;
        QFont font;
        QRect area;
        int wrapping = 0;  ///< Between its words, or anywhere when a word alone is too wide.
        QRect bounds;
    };

    QRect captionArea() const;
    const Layout& layout() const;

    ButtonBitmaps bitmaps_;
    mutable Layout layout_;  ///< Measuring takes longer than painting.
};

/// The mark of the control that the keyboard's keys go to.
void paintFocusRing(QPainter* painter, const QRect& area);

}  // namespace ui
