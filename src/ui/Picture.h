#pragma once

#include <QLabel>

namespace ui {

/// A static picture (`Bitmaps.h`), as large as the widget. It is painted anew each time: a large picture is
/// seldom seen, and its pixels would be most of a screen's memory.
class Picture : public QLabel {
    Q_OBJECT

  public:
    Picture(int number, QWidget* parent) : QLabel(parent), number_(number) {}

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    int number_;
};

}  // namespace ui
