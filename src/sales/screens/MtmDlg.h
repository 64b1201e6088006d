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
    void finish();

    /// Refills the list; the chosen line stays chosen.
    void showLines();
    /// The row of the line; -1 when the list does not hold it.
    int rowOf(const LineKey& key) const;
    void showAmounts();
    void markUnsaved();
    void deselect();
    /// False when the keypad was left without a quantity, or with one of more than three digits.
    bool askQuantities(std::int64_t* boxes, std::int64_t* bottles, const LineKey& start);
    platform::Won total() const;

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
