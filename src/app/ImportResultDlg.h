#pragma once

#include "ui/Screen.h"

namespace app {

/// Lets the next CImportResultDlg show this report.
void setImportReport(const QString& report);

/// What became of the office's files (dialog 437), opened in the import's place when there is more to say
/// than that they are loaded.
class CImportResultDlg : public ui::Screen {
    Q_OBJECT

  public:
    CImportResultDlg();
};

}  // namespace app
