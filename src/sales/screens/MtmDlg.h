#pragma once

#include <QElapsedTimer>
#include <optional>

#include "app/ScannedDigits.h"
#include "platform/Rows.h"
#include "sales/LineAmounts.h"
#include "sales/PastOrder.h"
#include "sales/SlipLine.h"
#include "sales/WorkingSlip.h"
#include "sales/screens/QuantityQuestion.h"
#include "ui/Screen.h"

namespace ui {
class ReportList;
}

namespace sales {

struct SlipAmount;
class QuantityStepper;

/// The sales slip (dialog 134): one customer's goods, edited in the working slip.
class CMtmDlg : public ui::Screen {
    Q_OBJECT

  public:
    CMtmDlg();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void addLines();
    void addAmountRows();
    void addButtons();
    void openSlip();
    /// True when a new slip's number holds another customer's lines.
    bool isNumberTaken() const;
    void tellNumberTaken() const;
    /// A resumed search goes on where it was left with a product.
    void addFromSearch(bool isResumed);
    void addByCode();
    /// Adds the product, then those that are scanned while quantities are asked for.
    void addProduct(const QString& pcode, bool isScanned = false);
    void addLine(const QString& pcode, bool isScanned);
    void addScanned();
    /// Fills an empty slip with the customer's last one; on any other one of the last five is chosen first.
    void addPastOrder();
    SlipHead head() const;
    void selectLine(int row);
    void changeQuantities();
    /// One more or one less of the number that the stepper stands at.
    void step(int by);
    /// Gives the selected line these quantities. False, and told, when they cannot be.
    bool changeTo(const Quantities& quantities);
    void editAmount(const SlipAmount& amount);
    /// Shows where the selected line's price comes from.
    void explainPrice();
    void deleteSelected();
    /// False when the database did not take the slip.
    bool save();
    /// Says by how much the slip's collection has followed its total, if it has.
    void tellMoved(platform::Won moved);
    void finish();
    /// Asks about lines whose goods cost nothing.
    bool areFreeLinesMeant() const;

    /// True, and told with the lines as they stand, when another line is like the chosen one.
    bool isChosenTwice();
    /// Refills the list; the chosen line stays chosen.
    void showLines();
    void setLines(platform::Rows lines);
    /// The row of the line; -1 when the list does not hold it.
    int rowOf(const LineKey& key) const;
    void showAmounts();
    void markUnsaved();
    void deselect();

    ui::ReportList* list_ = nullptr;
    platform::Rows lines_;                    ///< As workingLines gives them; the list shows them.
    QHash<QStringList, LineDetail> details_;  ///< As workingDetails gives them.
    SlipSums sums_;
    std::optional<LineKey> selected_;
    LineAmounts selectedAmounts_;
    platform::Won receivable_;
    QLabel* savedMark_ = nullptr;
    bool hasUnsavedLines_ = false;
    bool isPastOrder_ = false;
    bool hasChangedSince_ = false;  ///< Since the past order was taken.
    QuantityQuestion question_;
    QuantityStepper* stepper_ = nullptr;
    app::ScannedDigits scanned_;
    QElapsedTimer sinceOpened_;
};

}  // namespace sales
