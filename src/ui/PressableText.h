#pragma once

#include <QLabel>

namespace ui {

/// A text that says more when it is pressed, with a finger, the space bar or Enter.
class PressableText : public QLabel {
    Q_OBJECT

  public:
    explicit PressableText(QWidget* parent);

  Q_SIGNALS:
    void pressed();

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    bool isDown_ = false;  ///< The finger came down on it.
};

}  // namespace ui
