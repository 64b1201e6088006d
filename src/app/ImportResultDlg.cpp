#include "app/ImportResultDlg.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <utility>

#include "app/Dialogs.h"
#include "ui/FlickScroll.h"

namespace app {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kReport = 1142;

QString& reportToShow() {
    static QString report;
    return report;
}

}  // namespace

void setImportReport(const QString& report) {
    reportToShow() = report;
}

CImportResultDlg::CImportResultDlg() : Screen(dialogs::kImportResult) {
    addHeading(0, ui::bitmaps::kImportHeading, u"수신 결과"_s);
    auto* report = place(kReport, new QPlainTextEdit(this), {2, 38, 236, 242});
    report->setReadOnly(true);
    report->setFont(ui::font(ui::FontHeight::Small));
    report->setPlainText(std::exchange(reportToShow(), {}));
    describe(report, u"수신 결과"_s);
    new ui::FlickScroll(report);
    ui::BitmapButton* button = addMainButton(1000, u"확  인"_s, [this] { close(Accepted); });
    setCancelButton(button);
    report->setFocusPolicy(Qt::NoFocus);
    button->setFocus();
}

}  // namespace app
