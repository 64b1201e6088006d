// The customer list of one consonant, from opening its screen to its first paint, beside a bare QTableView on
// a minimal model that a bound statement fills with the same rows. One window of the terminal's size each.

#include <sqlite3.h>

#include <QAbstractTableModel>
#include <QCoreApplication>
#include <QEvent>
#include <QTableView>
#include <array>
#include <memory>
#include <stdexcept>
#include <vector>

#include "Bench.h"
#include "Folder.h"
#include "Screens.h"
#include "app/Dialogs.h"
#include "app/Session.h"
#include "ui/Fonts.h"
#include "ui/ReportList.h"
#include "ui/Terminal.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRuns = 11;
constexpr int kCustomers = 50'000;
constexpr QStringView kConsonant = u"ㄱ";
constexpr QStringView kSalesman = u"A";

/// An SQLite handle on the terminal's database.
class Handle {
  public:
    explicit Handle(const QString& path) {
        if (sqlite3_open_v2(path.toUtf8().constData(), &handle_, SQLITE_OPEN_READWRITE, nullptr) !=
            SQLITE_OK) {
            throw std::runtime_error("no database");
        }
    }
    ~Handle() { sqlite3_close(handle_); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    operator sqlite3*() const { return handle_; }

  private:
    sqlite3* handle_ = nullptr;
};

void bind(sqlite3_stmt* statement, int place, QStringView text) {
    const QByteArray bytes = text.toUtf8();
    sqlite3_bind_text(statement, place, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
}

void addCustomers(sqlite3* handle) {
    sqlite3_exec(handle, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(
        handle,
        "INSERT INTO GARAE VALUES (?,?,'주점','2024-03-15','123-45-67890','12','','150000','0',"
        "'서울시 종로구 관철동 12-3','일반','02-123-4567','',?,?,'')",
        -1, &insert, nullptr);
    for (int i = 0; i < kCustomers; ++i) {
        bind(insert, 1, QString::number(i, 36).rightJustified(4, u'0'));
        bind(insert, 2, u"가람상회 %1호점"_s.arg(i * 7919 % kCustomers));
        bind(insert, 3, kConsonant);
        bind(insert, 4, kSalesman);
        sqlite3_step(insert);
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    if (sqlite3_exec(handle, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error("no customers");
    }
}

class MinimalModel : public QAbstractTableModel {
  public:
    static constexpr int kColumns = 3;

    explicit MinimalModel(sqlite3* handle) {
        sqlite3_stmt* select = nullptr;
        sqlite3_prepare_v2(handle,
                           "SELECT GCode, GName, EndDate FROM GARAE WHERE Seek = ? AND userID = ? "
                           "ORDER BY GName DESC",
                           -1, &select, nullptr);
        bind(select, 1, kConsonant);
        bind(select, 2, kSalesman);
        while (sqlite3_step(select) == SQLITE_ROW) {
            auto& row = rows_.emplace_back();
            for (int column = 0; column < kColumns; ++column) {
                row[std::size_t(column)] =
                    QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(select, column)),
                                      sqlite3_column_bytes(select, column));
            }
        }
        sqlite3_finalize(select);
    }

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : int(rows_.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : kColumns; }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole) return {};
        return rows_[std::size_t(index.row())][std::size_t(index.column())];
    }

  private:
    std::vector<std::array<QString, kColumns>> rows_;
};

/// Lets events run until `view` has been painted.
class PaintWatch : public QObject {
  public:
    explicit PaintWatch(QTableView* view) { view->viewport()->installEventFilter(this); }

    void wait() const {
        while (!isPainted_) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        isPainted_ = isPainted_ || event->type() == QEvent::Paint;
        return QObject::eventFilter(watched, event);
    }

  private:
    bool isPainted_ = false;
};

void checkRows(const QTableView& view) {
    if (view.model()->rowCount() != kCustomers) throw std::runtime_error("the list is not complete");
}

}  // namespace

Result measureList() {
    const Folder folder;
    const Handle handle(folder.databaseFile());
    addCustomers(handle);
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

    const auto ours = [&] {
        std::unique_ptr<ui::Screen> screen;
        const double time = millisecondsOf([&] {
            screen = ui::makeScreen(app::dialogs::kCustomerList);
            const PaintWatch watch(screen->findChild<ui::ReportList*>());
            terminal.show(screen.get());
            watch.wait();
        });
        checkRows(*screen->findChild<ui::ReportList*>());
        return time;
    };
    const auto peer = [&] {
        std::unique_ptr<MinimalModel> model;
        std::unique_ptr<QTableView> view;
        const double time = millisecondsOf([&] {
            model = std::make_unique<MinimalModel>(handle);
            view = std::make_unique<QTableView>(&window);
            view->setModel(model.get());
            view->setGeometry(window.rect());
            const PaintWatch watch(view.get());
            view->show();
            watch.wait();
        });
        checkRows(*view);
        return time;
    };
    const Result result = compare(kRuns, "ms", ours, peer);
    app::session() = {};
    return result;
}

}  // namespace bench
