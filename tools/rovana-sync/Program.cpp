#include "rovana-sync/Program.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QThread>

#include "common/CommandLine.h"
#include "platform/Clock.h"
#include "platform/Device.h"
#include "platform/FolderLock.h"
#include "rovana-sync/Recovery.h"
#include "rovana-sync/Sync.h"

namespace terminal_sync {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::FolderLock;

constexpr QStringView kUsage =
    u"Usage: rovana-sync [--device DIR] [--watch | --recover]\n"
    "Sends the terminal's days to the office and fetches master data, which the next login loads. Repeated "
    "at\n"
    "any moment it changes nothing. DIR/office.conf is what \"rovana-office enrol\" wrote for this "
    "terminal.\n"
    "  --device DIR  The device folder; without it $ROVANA_DEVICE, else the user's application-data folder.\n"
    "  --watch       Goes on: soon after each change, and every two minutes without one.\n"
    "  --recover     Gives an empty or older database the terminal's own days back. The terminal must be "
    "closed.\n"
    "Exit codes: 0 done, 1 failed, 2 wrong usage.\n";

constexpr int kLookSeconds = 5;          ///< Between two looks whether the terminal has saved something.
constexpr int kSecondsAfterChange = 20;  ///< A visit is saved several times.
constexpr int kSecondsWithoutChange = 120;

/// What a change of the terminal's database changes: its file, or its write-ahead log.
QString databaseTrace() {
    QString trace;
    for (const QString& suffix : {u""_s, u"-wal"_s}) {
        const QFileInfo file(platform::device::path(platform::device::kDatabaseFile) + suffix);
        trace += u"%1 %2 "_s.arg(file.size()).arg(file.lastModified().toMSecsSinceEpoch());
    }
    return trace;
}

/// Keeps other syncs of this folder out.
class Turn {
  public:
    Turn() : lock_(folder()) {
        if (lock_.state() == FolderLock::State::Taken)
            throw LocalError("another rovana-sync is at work on this folder");
    }

  private:
    static QString folder() {
        const QString folder = platform::device::path(books::kOfficeFolder);
        if (!QDir().mkpath(folder))
            throw LocalError("the folder " + folder.toStdString() + " cannot be made");
        return folder;
    }
    FolderLock lock_;
};

void report(const Outcome& outcome, QTextStream& out, QTextStream& err) {
    out << u"sent %1, deleted %2, waiting %3"_s.arg(outcome.sent).arg(outcome.deleted).arg(outcome.waiting);
    if (!outcome.fetched.isEmpty()) out << u", fetched "_s << outcome.fetched.join(u", "_s);
    out << u'\n';
    for (const QString& remark : outcome.remarks) err << u"rovana-sync: "_s << remark << u'\n';
    out.flush();
    err.flush();
}

void syncOnce(QTextStream& out, QTextStream& err) {
    const Turn turn;
    const office::Access access = readAccessFile();
    report(Sync(access).run(), out, err);
}

void recoverDays(QTextStream& out, QTextStream& err) {
    const Turn turn;
    // A terminal holds a slip and its number in memory, and counts on the slips that it has read.
    const FolderLock terminal(platform::device::folder());
    if (terminal.state() == FolderLock::State::Taken) throw LocalError("close the terminal first");
    const office::Access access = readAccessFile();
    // The office has to know first what is here, and what was deleted here.
    Sync(access).run();
    Office office(access);
    const Recovered recovered = recover(office);
    out << u"gave back %1 documents of %2 days\n"_s.arg(recovered.documents).arg(recovered.days);
    for (const QString& each : recovered.left) err << u"rovana-sync: not given back: "_s << each << u'\n';
    report(Sync(access).run(), out, err);
}

/// Returns what is wrong, empty when nothing is.
QString attempt(const std::function<void()>& work) try {
    work();
    return {};
} catch (const std::exception& error) {
    return QString::fromUtf8(error.what()).trimmed();
}

[[noreturn]] void watch(QTextStream& out, QTextStream& err) {
    QString said;
    while (true) {
        const QString before = databaseTrace();
        QElapsedTimer since;
        since.start();
        const QString trouble = attempt([&] { syncOnce(out, err); });
        // The same trouble is told once.
        if (!trouble.isEmpty() && trouble != said) err << u"rovana-sync: "_s << trouble << Qt::endl;
        said = trouble;
        // Terminals that were switched on together do not stay together.
        const int idle = kSecondsWithoutChange * QRandomGenerator::global()->bounded(90, 111) / 100;
        const auto patience = [&] {
            if (databaseTrace() == before) return idle;
            // Balances that wait to be loaded may have become old just now.
            return MasterFiles::areBalancesWaiting() ? 0 : kSecondsAfterChange;
        };
        do {
            QThread::sleep(kLookSeconds);
        } while (since.elapsed() < 1000 * patience());
    }
}

}  // namespace

int run(const QStringList& arguments, QTextStream& out, QTextStream& err) {
    QCommandLineParser parser;
    parser.addOptions({{{u"h"_s, u"help"_s}, u""_s},
                       {u"version"_s, u""_s},
                       {u"device"_s, u""_s, u"DIR"_s},
                       {u"clock"_s, u""_s, u"yyyy-MM-dd HH:mm"_s},
                       {u"watch"_s, u""_s},
                       {u"recover"_s, u""_s}});
    const bool isParsed = parser.parse(arguments) && parser.positionalArguments().isEmpty() &&
                          !(parser.isSet(u"watch"_s) && parser.isSet(u"recover"_s));
    if (!isParsed) {
        err << kUsage;
        return tools::kUsageError;
    }
    if (parser.isSet(u"help"_s) || parser.isSet(u"version"_s)) {
        out << (parser.isSet(u"help"_s) ? kUsage.toString()
                                        : u"rovana-sync "_s + QStringLiteral(ROVANA_VERSION) + u'\n');
        return tools::kSuccess;
    }
    platform::device::setFolder(platform::device::choose(parser.value(u"device"_s)));
    // A stopped clock is for tests.
    const QDateTime clock = QDateTime::fromString(parser.value(u"clock"_s), u"yyyy-MM-dd HH:mm"_s);
    if (clock.isValid()) platform::clock::set(clock);
    if (parser.isSet(u"watch"_s)) watch(out, err);
    const QString trouble =
        attempt([&] { parser.isSet(u"recover"_s) ? recoverDays(out, err) : syncOnce(out, err); });
    if (trouble.isEmpty()) return tools::kSuccess;
    err << u"rovana-sync: "_s << trouble << u'\n';
    return tools::kFailure;
}

}  // namespace terminal_sync
