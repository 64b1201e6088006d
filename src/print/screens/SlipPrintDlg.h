#pragma once

#include <QString>
#include <QTimer>
#include <span>

#include "print/SlipPapers.h"
#include "ui/Screen.h"

class QRadioButton;

namespace print {

/// The slip-printing menu (dialog 142) for the slip of the session. Closing it finishes the visit.
class CSlipPrintDlg : public ui::Screen {
    Q_OBJECT

  public:
    CSlipPrintDlg();

  private:
    void addPaperButtons();
    /// False when a copy of one of the papers has gone to the printer, jobs wait there, and no second one is
    /// meant.
    bool mayPrint(std::span<const books::Paper> papers, books::Copy copy) const;
    /// Asks, while jobs wait.
    static bool isSecondCopyMeant();
    /// Both copies of what the visit leaves behind.
    void printVisit();
    /// Says what went to the printer and, as long as jobs wait there, that they do.
    void showPrinter();
    /// Prints the chosen copy and says under the buttons what was printed, or in a message that there is
    /// nothing.
    void print(std::span<const books::Paper> papers);

    QRadioButton* buyer_ = nullptr;
    QString sent_;  ///< What went to the printer last, in words.
    QTimer look_;
    SlipPapers papers_;
};

}  // namespace print
