#pragma once

#include "totals/Report.h"
#include "ui/Screen.h"

namespace totals {

/// Shows the report on dialog 458 and returns when that is closed.
void showReport(const Report& report);

/// A report as a list with its sums under it (dialog 458), printed on request.
class CReportDlg : public ui::Screen {
    Q_OBJECT

  public:
    /// Shows the report that showReport was called with.
    CReportDlg();

  private:
    int addSums(int bottom);
    void printReport();

    Report report_;
    bool wasPrinted_ = false;
};

}  // namespace totals
