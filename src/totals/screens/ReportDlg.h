#pragma once

#include <functional>

#include "totals/Report.h"
#include "ui/Screen.h"

namespace totals {

/// A report on its way to the screen.
struct ShownReport {
    Report report;
    bool wasPrinted = false;          ///< Its next print is a reprint.
    std::function<void()> notePrint;  ///< Called before it is printed; may be left out.
};

/// Shows the report on dialog 458 and returns when that is closed.
void showReport(const Report& report);
void showReport(const ShownReport& shown);

/// A report as a list with its sums under it (dialog 458), printed on request.
class CReportDlg : public ui::Screen {
    Q_OBJECT

  public:
    /// Shows the report that showReport was called with.
    CReportDlg();

  protected:
    /// For a screen that shows a report in the same way.
    CReportDlg(int id, const Report& report);

    ui::ReportList* list() { return list_; }
    /// Shows other rows under the same head.
    void setReport(const Report& report);

  private:
    CReportDlg(int id, ShownReport shown);
    int addSums(int bottom);
    void showRows();
    void printReport();

    ShownReport shown_;
    ui::ReportList* list_ = nullptr;
};

}  // namespace totals
