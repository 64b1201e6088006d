// The customer list of one consonant, from opening its screen until all of its rows are read and painted,
// beside a bare QTableView on a minimal model that a bound statement fills with the same rows: that is what
// Qt and SQLite ask for such a list. One window of the terminal's size each. Neither side waits for anything,
// so the processor's time is taken: what else runs does not count.

#include <QCoreApplication>
#include <QEvent>
#include <QTableView>
#include <memory>
#include <vector>

#include "Bench.h"
#include "Folder.h"
#include "Screens.h"
#include "Work.h"
#include "app/Dialogs.h"
#include "app/Session.h"
#include "platform/Sqlite.h"
#include "programs/MinimalModel.h"
#include "ui/Fonts.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRuns = 21;
constexpr int kCustomers = 50'000;
constexpr QStringView kConsonant = u"ㄱ";
constexpr QStringView kSalesman = u"A";

void addCustomers(platform::SqliteFile& file) {
    platform::SqliteTransaction transaction(file);
    platform::SqliteStatement insert = file.statement(
        "INSERT INTO GARAE VALUES (?,?,'주점','2024-03-15','123-45-67890','12','','150000','0',"
        "'서울시 종로구 관철동 12-3','일반','02-123-4567','',?,?,'')");
    for (int i = 0; i < kCustomers; ++i) {
        insert.bind(QString::number(i, 36).rightJustified(4, u'0'))
            .bind(u"가람상회 %1호점"_s.arg(i * 7919 % kCustomers))
            .bind(kConsonant.toString())
            .bind(kSalesman.toString())
            .step();
        insert.rewind();
    }
    transaction.commit();
}

/// Lets events run until `view` has been painted with all rows.
class PaintWatch : public QObject {
  public:
    explicit PaintWatch(QTableView* view) : view_(*view) { view->viewport()->installEventFilter(this); }

    void wait() const {
        while (!isPainted_) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        isPainted_ =
            isPainted_ || (event->type() == QEvent::Paint && view_.model()->rowCount() == kCustomers);
        return QObject::eventFilter(watched, event);
    }

  private:
    const QTableView& view_;
    bool isPainted_ = false;
};

double processorTimeOf(const std::function<void()>& work) {
    const double before = processorMilliseconds();
    work();
    return processorMilliseconds() - before;
}

/// Every hundredth row as it is shown.
QStringList shownBy(const QTableView& view) {
    QStringList texts;
    for (int row = 0; row < view.model()->rowCount(); row += 100) {
        for (int column = 0; column < view.model()->columnCount(); ++column)
            texts << view.model()->index(row, column).data().toString();
    }
    return texts;
}

/// The rows of a list that is gone are freed when nothing else is to do.
void letIdleWorkEnd() {
    while (!QCoreApplication::instance()->findChildren<QObject*>(u"discarded"_s).isEmpty())
        QCoreApplication::processEvents();
}

}  // namespace

Result measureList() {
    const Folder folder;
    platform::SqliteFile file(folder.databaseFile(), platform::SqliteFile::Mode::Existing);
    addCustomers(file);
    ui::prepareFonts();
    ui::Terminal terminal;
    terminal.setVisible(true);
    QWidget window;
    window.setFixedSize(ui::kScreenSize);
    window.show();
    QCoreApplication::processEvents();

    app::session() = {};
    app::session().UserID = kSalesman.toString();
    app::session().action.SeekValue = kConsonant.toString();
    registerScreens();

    QStringList shown[2];
    const auto ours = [&] {
        std::unique_ptr<ui::Screen> screen;
        const double time = processorTimeOf([&] {
            screen = ui::makeScreen(app::dialogs::kCustomerList);
            const PaintWatch watch(screen->findChild<ui::ReportList*>());
            terminal.show(screen.get());
            watch.wait();
        });
        shown[0] = shownBy(*screen->findChild<ui::ReportList*>());
        screen.reset();
        letIdleWorkEnd();
        return time;
    };
    const auto peer = [&] {
        std::unique_ptr<MinimalModel> model;
        std::unique_ptr<QTableView> view;
        const double time = processorTimeOf([&] {
            model = std::make_unique<MinimalModel>(
                file.handle(),
                "SELECT GCode, GName, EndDate FROM GARAE WHERE Seek = ? AND userID = ? ORDER BY GName DESC",
                std::vector{kConsonant.toString(), kSalesman.toString()}, 3);
            view = std::make_unique<QTableView>(&window);
            view->setModel(model.get());
            view->setGeometry(window.rect());
            const PaintWatch watch(view.get());
            view->show();
            watch.wait();
        });
        shown[1] = shownBy(*view);
        return time;
    };
    const Result result = compareCounted(kRuns, "ms", ours, peer);
    app::session() = {};
    if (shown[0] != shown[1]) throw std::runtime_error("the two lists differ");
    return result;
}

}  // namespace bench
