#pragma once

#include <QAbstractButton>
#include <QPointer>

#include "desk/demo/DemoCards.h"

class QLabel;

namespace desk {

/// The groove that cards are drawn through. It lights up while the reader takes a card.
class Groove : public QWidget {
    Q_OBJECT

  public:
    explicit Groove(QWidget* parent = nullptr);
    void setReading(bool isReading);
    bool isReading() const { return isReading_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool isReading_ = false;
};

/// A demonstration card on the desk: a press draws it through the groove, and so does the pointer that
/// carries it across.
class Card : public QAbstractButton {
    Q_OBJECT

  public:
    Card(const DemoCard& card, Groove* groove, QWidget* parent = nullptr);
    ~Card() override;
    QSize sizeHint() const override { return {92, 38}; }

  Q_SIGNALS:
    /// The card went through the groove.
    void drawnThrough();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    const DemoCard& card_;
    Groove* groove_;
    QPoint grip_;               ///< Where the pointer holds the card.
    QPointer<QLabel> carried_;  ///< The card in the air.
    bool hasPassed_ = false;    ///< It has met the groove on its way.
};

/// The reader's slot with the demonstration cards beside it. A card goes to the terminal's reader, as one
/// that is swiped there; while the reader takes none, nothing happens.
class CardSlot : public QWidget {
    Q_OBJECT

  public:
    explicit CardSlot(QWidget* parent = nullptr);
    void setReading(bool isReading) { groove_->setReading(isReading); }

  private:
    Groove* groove_;
};

}  // namespace desk
