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

    /// Lets a quick second touch press the button again, as the keys of a keypad need it. Of any other button
    /// a double touch is one.
    void setRepeated(bool isRepeated) { isRepeated_ = isRepeated; }

    /// Where the caption is painted; reaches beyond the button when it is too long for it.
    QRect captionBounds() const;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

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
    bool isRepeated_ = false;
    mutable Layout layout_;  ///< Measuring takes longer than painting.
};

/// The ring helps who works with keys, also where a screen hands the focus on; a finger knows where it was.
/// Says which of both works now.
void workWithKeys(bool isWith);

/// True while the control has the focus, and its ring shows that.
bool showsFocusRing(const QWidget& control);

/// The mark of the control that the keyboard's keys go to.
void paintFocusRing(QPainter* painter, const QRect& area);

}  // namespace ui
