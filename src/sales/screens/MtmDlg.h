#pragma once

#include <optional>

#include "platform/Rows.h"
#include "sales/LineAmounts.h"
#include "sales/SlipLine.h"
#include "ui/Screen.h"

namespace ui {
class ReportList;
}

namespace sales {

struct SlipAmount;

/// The sales slip (dialog 134): one customer's goods, edited in the working slip.
class CMtmDlg : public ui::Screen {
    Q_OBJECT

  public:
    CMtmDlg();

  private:
    void addAmountRows();
    void addButtons();
    void openSlip();
    /// True when a new slip's number holds another customer's lines.
    bool isNumberTaken() const;
    void tellNumberTaken() const;
    void addFromSearch();
    void addByCode();
    void addProduct(const QString& pcode);
    void selectLine(int row);
    void changeQuantities();
    void editAmount(const SlipAmount& amount);
    /// Tells where the selected line's price comes from.
    void explainPrice();
    void deleteSelected();
    /// False when the database did not take the slip.
    bool save();
    /// Tells by how much the slip's collection has followed its total, if it has.
    void tellMoved(platform::Won moved);
    void finish();

    /// True, and told with the lines as they stand, when another line is like the chosen one.
    bool isChosenTwice();
    /// Refills the list; the chosen line stays chosen.
    void showLines();
    /// The row of the line; -1 when the list does not hold it.
    int rowOf(const LineKey& key) const;
    void showAmounts();
    void markUnsaved();
    void deselect();
    /// False when the keypad was left with "취  소", or with quantities that make no line, which is told.
    bool askQuantities(std::int64_t* boxes, std::int64_t* bottles, const LineKey& start);

    ui::ReportList* list_ = nullptr;
    platform::Rows lines_;  ///< As workingLines gives them; the list shows them.
    SlipSums sums_;
    std::optional<LineKey> selected_;
    LineAmounts selectedAmounts_;
    platform::Won receivable_;
    QLabel* savedMark_ = nullptr;
    bool hasUnsavedLines_ = false;
};

}  // namespace sales
