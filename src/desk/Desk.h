#pragma once

#include <QSize>
#include <QWidget>

#include "platform/Settings.h"

namespace ui {
class Terminal;
}

namespace desk {

class CardSlot;
class PaperView;
class StatusStrip;

/// A comfortable size of the desk at scale 1, in pixels.
inline constexpr QSize kDeskSize(600, 470);

/// The terminal on a desk: its screen in a device frame, the paper as it is printed, a card slot with the
/// demonstration cards, lamps and faults. The screens know nothing of it. Keys stay with the terminal; F6
/// goes to the desk and back, Tab goes round there, Esc returns.
class Desk : public QWidget {
    Q_OBJECT

  public:
    /// Takes the terminal into its frame. Where the settings name no printer, the desk's own prints on the
    /// roll.
    Desk(ui::Terminal* terminal, const platform::Settings& settings, QWidget* parent = nullptr);

    QSize sizeHint() const override { return kDeskSize; }

  protected:
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QWidget* makePaperSide(bool isRoll);
    void askWhereToSave(const QString& ending);
    void refresh();
    void changeSides();
    void returnToTerminal();

    ui::Terminal* terminal_;
    PaperView* paper_;
    CardSlot* slot_;
    StatusStrip* status_;
};

}  // namespace desk
