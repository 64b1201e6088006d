#pragma once

#include "totals/VisitReport.h"
#include "totals/screens/ReportDlg.h"

namespace totals {

/// The visits that do not agree (dialog 460), each with its reason; a touch opens the visit's slip. It shows
/// the session's `CheckedDays`, and shows them anew when a slip is left.
class CVisitCheckDlg : public CReportDlg {
    Q_OBJECT

  public:
    CVisitCheckDlg();

  private:
    CVisitCheckDlg(const QStringList& days, const VisitCheck& check);
    void openRow(int row);
    /// Opens the slip's screen with the session as the menu sets it, and puts the session back.
    void openVisit(const books::Visit& visit);

    QStringList days_;
    VisitCheck check_;
};

}  // namespace totals
