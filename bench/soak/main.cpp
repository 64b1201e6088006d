// rovana-soak [VISITS]: plays that many visits, or 10,000, on the real screens in this one process.

#include <malloc.h>
#include <sqlite3.h>
#include <unistd.h>

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QPixmapCache>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <deque>

#include "Day.h"
#include "Screens.h"
#include "app/RovanaApp.h"
#include "db/ImportFile.h"
#include "desk/demo/DemoCards.h"
#include "platform/Clock.h"
#include "platform/Device.h"
#include "platform/OwnerOnly.h"
#include "platform/Trace.h"
#include "platform/adoce/DatabaseFile.h"
#include "rovana-cardhost/Keys.h"
#include "rovana-cardhost/Ledger.h"
#include "rovana-play/DatabaseReader.h"
#include "rovana-play/Pilot.h"
#include "rovanactl/DeviceFolder.h"
#include "totals/DailyReports.h"
#include "ui/FontList.h"
#include "ui/Fonts.h"
#include "ui/Style.h"
#include "ui/Terminal.h"

// Qt calls these places of its table whenever an object comes or goes.
extern Q_CORE_EXPORT quintptr qtHookData[];

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kVisits = 10'000;
constexpr std::size_t kLastDays = 5;  ///< What a leak has taken is missing at the end of each of them.
constexpr int kWarmVisits = 500;      ///< By then every screen has been open, and every cache is in use.
constexpr double kMostGrowth = 1.05;  ///< Of the memory.
constexpr int kAddObject = 3;         ///< Places in Qt's table.
constexpr int kRemoveObject = 4;
constexpr double kMebibyte = 1024 * 1024;

qint64 objects = 0;

/// What the process holds. Bytes in use tell a leak before the allocator asks for more, resident ones also
/// what it cannot give back. SQLite's page cache is bounded and takes weeks to fill, so both leave it out.
constexpr const char* kHeld[] = {"MiB in use", "MiB resident", "files", "objects", "statements"};
constexpr std::size_t kResident = 1;
using Holdings = std::array<double, std::size(kHeld)>;

Holdings holdings() {
    QString error;
    const QString path = platform::device::path(platform::device::kDatabaseFile);
    sqlite3* const database = platform::adoce::DatabaseFile::shared(path, &error)->sqlite().handle();
    int cached = 0;
    int highest = 0;
    sqlite3_db_status(database, SQLITE_DBSTATUS_CACHE_USED, &cached, &highest, 0);
    int statements = 0;
    for (sqlite3_stmt* each = nullptr; (each = sqlite3_next_stmt(database, each)) != nullptr;) ++statements;
    const struct mallinfo2 memory = mallinfo2();
    QFile status(u"/proc/self/statm"_s);
    const double pages =
        status.open(QIODevice::ReadOnly) ? status.readAll().split(' ').value(1).toDouble() : 0;
    return {(double(memory.uordblks + memory.hblkhd) - cached) / kMebibyte,
            (pages * double(::sysconf(_SC_PAGESIZE)) - cached) / kMebibyte,
            double(QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size()),
            double(objects), double(statements)};
}

/// The sums of the reports, as columns of the tables.
constexpr std::array<QStringView, 3> kReports[] = {
    {u"sales", u"MTM", u"Box,Bon,MMoney,BMoney,YMoney+GMoney"},
    {u"containers", u"YTM", u"FBox,NBox,Bon,YMONEY+GMONEY,YSAMT+GSAMT"},
    {u"cards", u"MTMOK", u"0,CardMoney"},
    {u"collections", u"MTMOK", u"WonMoney,CardMoney,MisuInMoney,YDMoney,UnderMoney"},
};

/// What is wrong with a day's reports; empty when nothing is.
QString wrongReports(const QString& date, const QString& user) {
    QString problems;
    for (const auto& [name, table, columns] : kReports) {
        QStringList found;
        const auto daily = std::ranges::find(totals::dailyReports(), name, &totals::DailyReport::name);
        for (const totals::Sum& sum : totals::sums(daily->make(date, user).value_or(totals::Report())))
            found << QString::number(sum.value.value());
        const QString sums = columns.toString().replace(u',', u"),TOTAL("_s);
        const auto right = pilot::readValue(
            u"SELECT printf('%.0f%5', TOTAL(%1)) FROM %2 WHERE DDate = '%3' AND UserID = '%4'"_s.arg(
                sums, table, date, user, u" %.0f"_s.repeated(columns.count(u','))));
        if (found.join(u' ') != right.text)
            problems += u"%1 %2: %3, not %4%5\n"_s.arg(date, name, found.join(u' '), right.text, right.error);
    }
    return problems;
}

/// Invents the day's master data and puts it where the login finds it.
admin::demo::Data deliver(int number, QString* problem) {
    admin::demo::Options options;
    options.customers = 150;
    options.date = soak::dateOf(number);
    admin::demo::Data data = admin::demo::invent(options);
    // Of the office's orders, those for other salesmen stay.
    std::erase_if(data.orders,
                  [&](const auto& order) { return data.customers[order.customer].user == u"A"; });
    for (const db::ImportFile& each : db::importFiles()) {
        if (each.isOptional) continue;
        QFile file(platform::device::path(db::importPath(each, db::ImportSource::Documents)));
        const auto content = admin::demo::importFileContent(data, each);
        if (!content || !file.open(QIODevice::WriteOnly) || file.write(*content) != content->size())
            *problem += u"%1 could not be written\n"_s.arg(file.fileName());
    }
    return data;
}

/// Makes the device, and its host a card that can pay for every day. Returns what went wrong.
QString prepare(const QString& folder) {
    platform::device::setFolder(folder);
    QString error = admin::createDevice(admin::demo::Options{.date = soak::dateOf(0)});
    const QString host = folder + u"/cardhost"_s;
    if (!error.isEmpty() || !QDir().mkpath(host)) return error + host;
    auto keys = cardhost::openKeys(host, &error);
    if (!keys) return error;
    const desk::DemoCard& card = *desk::findDemoCard(u"good");
    cardhost::Ledger ledger(host, *std::move(keys));
    ledger.putCard(track3(card), card.password, cardhost::kLargestAmount, cardhost::kLargestAmount);
    return {};
}

/// Prints what came of it; true when it is as good as it must be.
bool report(int visits, double seconds, const Holdings& warm, const Holdings& held) {
    // What the machine has to give counts. The bytes in use are told beside it: a twentieth of those is less
    // than the pictures that a style keeps.
    const double growth = held[kResident] / warm[kResident];
    bool isGood = growth <= kMostGrowth;
    for (std::size_t i = kResident + 1; i < warm.size(); ++i) isGood &= held[i] <= warm[i];
    std::printf("soak %d visits in %.0f s: %.1f visits/s, growth %.2f %%, totals right%s\n", visits, seconds,
                visits / seconds, (growth - 1) * 100, isGood ? "" : ", NOT flat");
    std::printf("after %d visits, and in the end:", kWarmVisits);
    for (std::size_t i = 0; i < warm.size(); ++i) std::printf(" %s %.6g %.6g;", kHeld[i], warm[i], held[i]);
    std::printf("\n");
    return isGood;
}

/// The days one after the other, and what the process holds behind them.
struct Days {
    int count;
    int begun = 0;
    bool isOver = false;
    Holdings warm{};
    std::deque<Holdings> last{};
    QString problem{};

    /// The least that the last days ended with: at the end of a single one the paper's picture may just be
    /// drawn.
    Holdings least() const {
        Holdings least = last.front();
        for (const Holdings& each : last) {
            for (std::size_t i = 0; i < least.size(); ++i) least[i] = std::min(least[i], each[i]);
        }
        return least;
    }

    /// The steps of the next day, none after the last. Asked for at the first login, and at the menu after
    /// each close.
    QList<pilot::Step> next() {
        if (begun > 0) {
            const Holdings now = holdings();
            if (begun * soak::kVisitsADay <= kWarmVisits) warm = now;
            last.push_back(now);
            if (last.size() > kLastDays) last.pop_front();
        }
        isOver = begun == count || !problem.isEmpty();
        if (isOver) return {};
        const pilot::Script script = pilot::parseScript(soak::writeDay(begun, deliver(begun, &problem)));
        problem += script.errors.join(u'\n');
        ++begun;
        return script.steps;
    }
};

int fail(const QString& error) {
    qWarning("rovana-soak: %s", qUtf8Printable(error));
    return 1;
}

}  // namespace

int main(int argc, char* argv[]) {
    qtHookData[kAddObject] = quintptr(+[](QObject*) { ++objects; });
    qtHookData[kRemoveObject] = quintptr(+[](QObject*) { --objects; });
    platform::keepToOwner();
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    ui::useOwnFontList();
    const QApplication application(argc, argv);
    Days days{(argc > 1 ? QApplication::arguments()[1].toInt() : kVisits) / soak::kVisitsADay};
    if (days.count * soak::kVisitsADay <= kWarmVisits)
        return fail(u"VISITS is a number of hundreds above 5"_s);
    // In memory where there is such a place: how fast the disk is, is not what is asked.
    const QString memory = u"/dev/shm"_s;
    const QTemporaryDir folder((QDir(memory).exists() ? memory : QDir::tempPath()) +
                               u"/rovana-soak-XXXXXX"_s);
    if (const QString error = prepare(folder.filePath(u"device"_s)); !error.isEmpty()) return fail(error);
    platform::openLog();
    ui::prepareStyle();
    ui::prepareFonts();
    registerScreens();
    // The first login takes its work date from the clock before the first day's script has set it.
    platform::clock::set(QDateTime(QDate::fromString(soak::dateOf(0), Qt::ISODate), QTime(9, 0)));
    ui::Terminal terminal;
    terminal.setVisible(true);
    terminal.activateWindow();

    pilot::Options options;
    options.more = [&] { return days.next(); };
    pilot::Pilot player({}, options);
    QElapsedTimer time;
    time.start();
    QTimer::singleShot(0, &terminal, [&] {
        player.start();
        // Each salesman leaves the terminal to the next one. A program that ended would take the style's
        // pictures of its login along.
        while (!days.isOver && player.failure().isEmpty()) {
            app::CRovanaApp().run();
            QPixmapCache::clear();
        }
        QCoreApplication::quit();
    });
    QApplication::exec();
    const double seconds = double(time.elapsed()) / 1000;
    if (!player.finish()) return fail(player.failure());
    for (int day = 0; day < days.count; ++day)
        days.problem += wrongReports(soak::dateOf(day), soak::userOf(day));
    if (!days.problem.isEmpty()) return fail(days.problem);
    return report(days.count * soak::kVisitsADay, seconds, days.warm, days.least()) ? 0 : 1;
}
