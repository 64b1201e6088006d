#pragma once

#include <QSet>

#include "print/SlipBlocks.h"
#include "ui/Screen.h"

class QRadioButton;

namespace print {

/// The slip-printing menu (dialog 142) for the slip of the session. Closing it finishes the visit.
class CSlipPrintDlg : public ui::Screen {
    Q_OBJECT

  public:
    CSlipPrintDlg();

  private:
    void printInvoice();
    Copy chosenCopy() const;

    QRadioButton* buyer_ = nullptr;
    bool wasPrinted_ = false;  ///< Before this visit to the menu.
    QSet<Copy> printed_;       ///< Copies printed from this menu.
};

}  // namespace print
