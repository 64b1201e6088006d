#pragma once

#include <QSet>
#include <optional>

#include "print/Document.h"
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
    void printCollection();
    /// Prints the slip and says so under the buttons; says that there is none, and returns false, otherwise.
    bool print(const QString& name, const std::optional<Document>& slip);
    Copy chosenCopy() const;

    QRadioButton* buyer_ = nullptr;
    bool wasPrinted_ = false;  ///< Before this visit to the menu.
    // Copies printed from this menu.
    QSet<Copy> printed_;
    QSet<Copy> printedCollections_;
};

}  // namespace print
