#pragma once

#include <optional>

#include "books/ContainerBalance.h"
#include "container/screens/ContainerEntry.h"
#include "platform/Rows.h"

namespace ui {
class ReportList;
}

namespace container {

/// The container slip (dialog 394): what one customer gives back, edited in the working slip.
class CContainerSlipDlg : public ContainerEntry {
    Q_OBJECT

  public:
    CContainerSlipDlg();

  private:
    void addAmountRows();
    void addButtons();
    /// Adds the product that the search is left with. By the consonant, the board comes first.
    void addFromSearch(bool byConsonant);
    void addProduct(const QString& pCode);
    void changeCounts();
    void editAmount(const QString& title, platform::Won ContainerAmounts::*amount);
    void deleteSelected();

    /// Refills the list and the amounts; the chosen line stays chosen.
    void showLines();
    void showAmounts();
    void showBalance();

    ui::ReportList* list_ = nullptr;
    books::ContainerHistory history_;  ///< Read once: it may be years long.
    platform::Rows lines_;             ///< As workingLines gives them; the list shows them.
    std::optional<ContainerKey> selected_;
};

}  // namespace container
