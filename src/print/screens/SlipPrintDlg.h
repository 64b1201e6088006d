#pragma once

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
    /// Prints the chosen copy and says under the buttons what was printed, or in a message that there is
    /// nothing.
    void print(std::span<const books::Paper> papers);

    QRadioButton* buyer_ = nullptr;
    SlipPapers papers_;
};

}  // namespace print
