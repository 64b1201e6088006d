#pragma once

#include "sales/CustomerQuery.h"
#include "ui/NarrowScreen.h"

namespace sales {

/// The customer list (dialog 144): the customers of one consonant. Confirming allots the slip number and
/// opens the work screen in its place.
class CGaeaeDlg : public ui::NarrowScreen {
    Q_OBJECT

  public:
    CGaeaeDlg();

  private:
    void fill();
    void choose(int row);
    void showName();
    /// Of a customer whose row may not be shown any more.
    void forgetChoice();
    void confirm();

    ui::ReportList* list_ = nullptr;
    DaysCustomers today_;
    /// The key that the list was opened for: confirming clears the session's, also when it is refused.
    QString seek_;
    bool ownOnly_ = true;
    bool isChosenHere_ = false;
};

}  // namespace sales
