#include "totals/screens/ReportDlg.h"

#include <QFontMetrics>
#include <QLabel>
#include <algorithm>
#include <utility>

#include "app/Dialogs.h"
#include "print/PrintJob.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"
#include "ui/WaitCursor.h"

namespace totals {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Pixels that the widest text of a column takes in the list: a number is never shown cut.
int widest(const platform::Rows& rows, int column, const QFont& type) {
    constexpr int kCellMargins = 8;
    const QFontMetrics metrics(type);
    int width = 0;
    for (int row = 0; row < rows.count(); ++row) {
        width = std::max(width, metrics.horizontalAdvance(rows.at(row, column)) + kCellMargins);
    }
    return width;
}

/// The list's columns. Number columns are as wide as their numbers need, and the widest names give way to
/// those that show without scrolling: a number that ran over the edge would read as a smaller one.
QList<ui::ListColumn> fittedColumns(const Report& report, const platform::Rows& rows, QFont numbers) {
    constexpr int kListWidth = 232;  // Without its frame and scroll bar.
    // In which a long name goes on two lines.
    constexpr int kLeastNameWidth = 78;
    constexpr int kSmallestNumbers = 9;
    QList<ui::ListColumn> columns;
    ui::ListColumn* names = nullptr;
    int right = 0;
    int excess = 0;
    const QList<Column> shown = listColumns(report);
    columns.reserve(shown.size());
    for (const Column& column : shown) {
        const bool isNumber = column.kind != Kind::Text;
        const int needed = isNumber ? widest(rows, int(columns.size()), numbers) : 0;
        columns.append({column.title, std::max(column.pixels, needed),
                        (isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter});
        right += column.pixels;
        if (right > kListWidth) continue;
        excess += columns.last().width - column.pixels;
        if (!isNumber && (names == nullptr || column.pixels > names->width)) names = &columns.last();
    }
    // The list sets numbers smaller where names would have no room left.
    if (names != nullptr && names->width - excess < kLeastNameWidth &&
        numbers.pixelSize() > kSmallestNumbers) {
        numbers.setPixelSize(numbers.pixelSize() - 1);
        return fittedColumns(report, rows, numbers);
    }
    if (names != nullptr)
        names->width = std::max(std::min(names->width, kLeastNameWidth), names->width - excess);
    return columns;
}

/// The report on its way to the screen.
ShownReport& reportToShow() {
    static ShownReport shown;
    return shown;
}

}  // namespace

void showReport(const Report& report) {
    showReport(ShownReport{report, false, {}});
}

void showReport(const ShownReport& shown) {
    reportToShow() = shown;
    ui::runScreen(app::dialogs::kReport);
}

CReportDlg::CReportDlg() : CReportDlg(app::dialogs::kReport, std::exchange(reportToShow(), {})) {}

CReportDlg::CReportDlg(int id, const Report& report) : CReportDlg(id, ShownReport{report, false, {}}) {}

CReportDlg::CReportDlg(int id, ShownReport shown) : Screen(id), shown_(std::move(shown)) {
    constexpr int kListTop = 48;
    constexpr int kListBottom = 282;
    const Report& report = shown_.report;
    addLabel(0, report.title, {4, 2, 232, 26}, ui::FontHeight::Title, Qt::AlignCenter);
    addLabel(1059, {}, {4, 28, 232, 18}, ui::FontHeight::Small, Qt::AlignCenter);
    setFittedText(1059, report.salesman + u"  "_s + report.date, ui::FontHeight::Small);

    const int listBottom = addSums(kListBottom);
    list_ = addList(1054, {0, kListTop, 240, listBottom - kListTop}, report.title, {});
    list_->setEmptyText(u"내용이 없습니다."_s);
    showRows();
    addLeaveButton(1003, u"닫  기"_s);
    addMainButton(1000, u"출  력"_s, [this] { printReport(); });
    list_->setFocus();
}

void CReportDlg::showRows() {
    platform::Rows rows = listRows(shown_.report);
    const QList<ui::ListColumn> columns = fittedColumns(shown_.report, rows, ui::font(ui::FontHeight::Small));
    list_->setColumns(columns);
    list_->setRows(std::move(rows));
}

void CReportDlg::setReport(const Report& report) {
    shown_.report = report;
    shown_.wasPrinted = false;
    setFittedText(1059, report.salesman + u"  "_s + report.date, ui::FontHeight::Small);
    showRows();
}

int CReportDlg::addSums(int bottom) {
    constexpr int kFirstSum = 1077;
    constexpr int kSumHeight = 18;
    const QList<Sum> figures = sums(shown_.report);
    const int count = int(figures.size());
    // Two sums have a line each; more stand two beside each other.
    const int beside = count > 2 ? 2 : 1;
    const int top = bottom - (count + beside - 1) / beside * kSumHeight;
    const QFontMetrics metrics(ui::font(ui::FontHeight::Small));
    for (int i = 0; i < count; ++i) {
        const bool hasLine = beside == 1 || (i % 2 == 0 && i + 1 == count);
        const QRect area(i % beside == 0 ? 3 : 123, top + i / beside * kSumHeight, hasLine ? 234 : 114,
                         kSumHeight);
        const int titleWidth = std::min(metrics.horizontalAdvance(figures[i].label), area.width() / 2);
        addLabel(kFirstSum + 2 * i, {}, QRect(area.topLeft(), QSize(titleWidth, kSumHeight)));
        setFittedText(kFirstSum + 2 * i, figures[i].label, ui::FontHeight::Small);
        addAmount(kFirstSum + 2 * i + 1, figures[i].label, area.adjusted(titleWidth + 2, 0, 0, 0));
        setAmount(kFirstSum + 2 * i + 1, figures[i].value);
    }
    return top - 1;
}

void CReportDlg::printReport() {
    const Report& report = shown_.report;
    if (report.isEmpty()) return;
    const ui::WaitCursor cursor;
    // Noted first: a second strip that does not say so would pass for another close.
    if (shown_.notePrint) shown_.notePrint();
    print::printDocument(document(report, shown_.wasPrinted), ui::WaitCursor::alive);
    shown_.wasPrinted = true;
    setFittedText(1059, report.salesman + u"  "_s + report.date + u"  출력"_s, ui::FontHeight::Small);
}

}  // namespace totals
