#include "app/ImportDlg.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>

#include "app/Dialogs.h"
#include "app/ImportResultDlg.h"
#include "db/MasterImport.h"
#include "ui/Messages.h"
#include "ui/WaitCursor.h"

namespace app {
namespace {

using namespace Qt::Literals::StringLiterals;

struct FileRow {
    int label;
    int bar;
    QStringView caption;  ///< As the screen is drawn.
};
constexpr FileRow kRows[] = {{1136, 1135, u"주문서"},
                             {1137, 1138, u"거래처_채권"},
                             {1139, 1140, u"상  품"},
                             {1141, 1142, u"거래처별 계약단가"},
                             // The drawn caption and the counted one differ by a syllable.
                             {1143, 1144, u"주류구분별마진"},
                             // Our own, for a file that an office need not send.
                             {1321, 1322, u"바코드"}};

}  // namespace

CImportDlg::CImportDlg() : Screen(dialogs::kImport) {
    addHeading(0, ui::bitmaps::kImportHeading, u"영업자료 수신"_s);
    for (int i = 0; i < kFiles; ++i) {
        const int top = 38 + i * 41;
        addLabel(kRows[i].label, kRows[i].caption.toString(), {8, top, 224, 22}, ui::FontHeight::Medium);
        bars_[size_t(i)] = place(kRows[i].bar, new QProgressBar(this), {8, top + 22, 224, 16});
        describe(bars_[size_t(i)], kRows[i].caption.toString());
        bars_[size_t(i)]->setTextVisible(false);
        bars_[size_t(i)]->setValue(0);
    }
    addLeaveButton(1001, u"취  소"_s);
    addMainButton(1000, u"확  인"_s, [this] { importAll(); });
    countFiles();
}

void CImportDlg::countFiles() {
    for (int i = 0; i < kFiles; ++i) {
        const db::ImportFile& file = db::importFiles()[size_t(i)];
        const QString name = dataName(file);
        setText(kRows[i].label, name + u" : 0건"_s);
        sources_[size_t(i)] = db::findImportFile(file);
        if (file.isOptional && sources_[size_t(i)] == db::ImportSource::None) {
            control(kRows[i].label)->hide();
            bars_[size_t(i)]->hide();
        }
        const std::optional<int> lines = db::countImportLines(file, sources_[size_t(i)]);
        if (!lines) continue;
        setText(kRows[i].label, u"%1 : %2건"_s.arg(name).arg(*lines));
        bars_[size_t(i)]->setRange(0, std::max(*lines, 1));
    }
}

void CImportDlg::importAll() {
    QList<FileReport> reports;
    {
        // A sync that puts files has done so by then; who loads some takes longer.
        constexpr int kPatienceMs = 2000;
        const db::ImportLock lock(kPatienceMs);
        if (lock.isTaken()) {
            ui::message(u"다른 프로그램이 영업자료를 수신하고 있습니다..! 잠시 후에 다시 하세요."_s);
            return;
        }
        // A second press would load a file that is being loaded.
        setFocus();
        control(1000)->setEnabled(false);
        control(1001)->setEnabled(false);
        for (int i = 0; i < kFiles; ++i) {
            if (sources_[size_t(i)] != db::ImportSource::None) reports << importOne(i);
        }
    }
    ui::message(u"TXT DB 업데이트가 완료되었습니다..!"_s);
    const QString report = importReport(reports);
    if (report.isEmpty()) return close(Accepted);
    setImportReport(report);
    closeAndOpen(dialogs::kImportResult);
}

FileReport CImportDlg::importOne(int index) {
    // The screen is refreshed this often while lines are loaded.
    constexpr qint64 kRefreshMs = 30;
    const db::ImportFile& file = db::importFiles()[size_t(index)];
    const db::ImportSource source = sources_[size_t(index)];
    const std::optional<db::Shrinkage> shrinkage = db::findShrinkage(file, source);
    if (shrinkage && !ui::confirm(shrinkageQuestion(file, *shrinkage), u"영업자료 수신"_s))
        return {&file, {}, true};
    const ui::WaitCursor wait;
    QProgressBar* bar = bars_[size_t(index)];
    QElapsedTimer sinceRefresh;
    sinceRefresh.start();
    const db::ImportResult result = db::importFile(file, source, [&](int done, int count) {
        if (done < count && sinceRefresh.elapsed() < kRefreshMs) return;
        bar->setRange(0, count);
        bar->setValue(done);
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        sinceRefresh.restart();
    });
    return {&file, result};
}

}  // namespace app
