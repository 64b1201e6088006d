#pragma once

#include <QObject>
#include <optional>

#include "sales/PurchaseHistory.h"

class QFrame;
class QLabel;
class QModelIndex;

namespace ui {
class BitmapButton;
class ReportList;
}  // namespace ui

namespace sales {

/// The + and the - beside a number of a list, which show while a finger works on that number.
class QuantityStepper : public QObject {
    Q_OBJECT

  public:
    /// The buttons lie above the list, on its screen.
    QuantityStepper(ui::ReportList* list, ui::BitmapButton* less, ui::BitmapButton* more);

    /// Shows them at the number in that place of the list.
    void showAt(int row, int column);
    void hide();
    /// The number's column; -1 while they are hidden.
    int column() const { return column_; }
    /// The line's quantities after a step of the number; nothing where it would go beyond 0, away from the
    /// other one: a tap too many makes no return of what is sold.
    std::optional<Quantities> stepped(Quantities quantities, int by) const;

  private:
    void showName(const QModelIndex& name, int width);

    ui::ReportList& list_;
    ui::BitmapButton& less_;
    ui::BitmapButton& more_;
    QFrame* frame_;  ///< Around the number.
    QLabel* name_;   ///< The line's name, and below it what its second line says.
    QLabel* detail_;
    int column_ = -1;
};

}  // namespace sales
