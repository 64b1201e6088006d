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

  protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

  private:
    QRect captionArea() const;
    /// Breaks a caption between its words, or anywhere when a word alone is too wide.
    int wrapping() const;

    ButtonBitmaps bitmaps_;
    bool showsFocus_ = false;  ///< The ring helps who works with keys; a finger knows where it was.
};

}  // namespace ui
