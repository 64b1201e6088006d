#pragma once

#include <QList>

#include "platform/Rows.h"
#include "platform/Won.h"
#include "ui/Messages.h"
#include "ui/ReportList.h"
#include "ui/Screen.h"

namespace app {

/// What a list shows of a day's slips.
struct ListedSlips {
    platform::Rows rows{};
    QList<ui::RowDetail> details{};  ///< The second line of each row.
    QString total{};                 ///< What they come to, in words.
};

/// "1,234원".
QString wonText(platform::Won amount);

/// A day's slips of one kind of work (dialogs 132, 150 and 391): one is opened or deleted, a new one begun.
class SlipListScreen : public ui::Screen {
    Q_OBJECT

  protected:
    /// `workDialog` is the screen of one slip.
    SlipListScreen(int dialogId, int workDialog) : Screen(dialogId), workDialog_(workDialog) {}

    /// The list in `area`, and below it, 24 pixels high, how many slips there are, unless `isCounted` leaves
    /// that half to the screen, and what they come to.
    void addSlips(const QRect& area, const QString& name, const QList<ui::ListColumn>& columns,
                  bool isCounted = true);
    /// The row of buttons, and the list filled for the first time.
    void addButtons(const QString& addCaption, const QString& deleteQuestion, const QString& deleteCaption,
                    ui::MessageIcon icon = ui::MessageIcon::None);

    /// Opens a screen of the work; the list goes when that finished the visit, else it is filled anew.
    void runWork(int dialogId);
    /// False, told, when no slip is chosen.
    static bool isSlipChosen();

    /// The slips to list; what the session has of a chosen one is taken back, since the new list shows none.
    virtual ListedSlips loadSlips() = 0;
    /// Takes the slip in that row of the loaded ones into the session.
    virtual void takeSlip(const platform::Rows& slips, int row) = 0;
    /// Opens the chosen slip.
    virtual void openSlip() { runWork(workDialog_); }
    virtual void deleteSlip() = 0;

  private:
    void fill();
    void deleteChosen(const QString& question, const QString& caption, ui::MessageIcon icon);

    int workDialog_;
    ui::ReportList* list_ = nullptr;
    ListedSlips slips_;
};

}  // namespace app
