// Programs as they run by themselves: the terminal's start, up to the painted login screen, its memory after
// a visit, and how often it wakes while nobody touches it.

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <stdexcept>

#include "Bench.h"
#include "DemoDevice.h"
#include "Folder.h"
#include "Work.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRuns = 41;
constexpr int kMemoryRuns = 3;
constexpr double kKibibytesPerMebibyte = 1024;
/// The display of Qt's offscreen platform has 800 by 800 pixels: 240 by 320 fill it at this scale.
constexpr QStringView kFullScale = u"2.5";
constexpr int kSettleSeconds = 2;
constexpr int kIdleSeconds = 5;

QString program(const QString& name) {
    return QCoreApplication::applicationDirPath() + u'/' + name;
}

struct Said {
    double milliseconds;  ///< From before the process is started to its line.
    double figure;        ///< Behind the line's word.
};

/// Runs a program that says `word` and a figure.
Said run(const QString& name, const QStringList& arguments, const QByteArray& word, QStringView scale) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_SCALE_FACTOR"_s, scale.toString());
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::SeparateChannels);
    QByteArray line;
    const double time = millisecondsOf([&] {
        process.start(program(name), arguments, QIODevice::ReadOnly);
        while (!process.canReadLine() && process.waitForReadyRead()) {
        }
        line = process.readLine();
    });
    process.waitForFinished();
    const QList<QByteArray> words = line.trimmed().split(' ');
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0 || words.size() != 2 ||
        words[0] != word || words[1].toDouble() <= 0) {
        throw std::runtime_error(
            (name + u" failed: "_s + QString::fromLocal8Bit(process.readAllStandardError())).toStdString());
    }
    return {time, words[1].toDouble()};
}

/// How often the threads of a process have gone to sleep so far.
qint64 sleepsOf(qint64 process) {
    constexpr QByteArrayView kCount = "voluntary_ctxt_switches:";
    qint64 sleeps = 0;
    const QDir tasks(u"/proc/%1/task"_s.arg(process));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile status(tasks.filePath(task + u"/status"_s));
        if (!status.open(QIODevice::ReadOnly)) throw std::runtime_error("the terminal has ended");
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith(kCount)) sleeps += line.mid(kCount.size()).trimmed().toLongLong();
        }
    }
    return sleeps;
}

/// Wake-ups in a second of a terminal that shows its login screen.
double idleWakeups(const QString& view) {
    const QTemporaryDir folder;
    const QString device = folder.filePath(u"device"_s);
    makeDemonstration(device);
    QProcess terminal;
    terminal.setProcessChannelMode(QProcess::MergedChannels);
    terminal.start(program(u"rovana"_s), {view, u"--device"_s, device});
    const auto leaveAlone = [&terminal](int seconds) {
        // One that has ended sleeps best.
        if (!terminal.waitForStarted() || terminal.waitForFinished(seconds * 1000))
            throw std::runtime_error("the terminal has ended: " + terminal.readAll().toStdString());
        return sleepsOf(terminal.processId());
    };
    const qint64 before = leaveAlone(kSettleSeconds);
    const qint64 after = leaveAlone(kIdleSeconds);
    terminal.terminate();
    terminal.waitForFinished();
    return double(after - before) / kIdleSeconds;
}

}  // namespace

Result measureStartup() {
    const QTemporaryDir folder;
    const QString device = folder.filePath(u"device"_s);
    makeDemonstration(device);
    return compareCounted(
        kRuns, "ms",
        [&] {
            const QStringList arguments{u"--fullscreen"_s, u"--device"_s, device};
            return run(u"login-screen"_s, arguments, "painted", kFullScale).milliseconds;
        },
        [] { return run(u"minimal-dialog"_s, {}, "painted", kFullScale).milliseconds; });
}

Result measureMemory() {
    const QTemporaryDir folder;
    const QString device = folder.filePath(u"device"_s);
    makeDemonstration(device);
    enlarge(device, kManySlips);
    const QString script = folder.filePath(u"common.visit"_s);
    writeFile(script, (u"clock 2026-11-21 09:05\nlogin A 1111\n"_s + commonestVisit()).toUtf8());
    return compare(
        kMemoryRuns, "MiB",
        [&] {
            const QStringList arguments{script, u"--scale"_s, u"2"_s, u"--device"_s, device};
            return run(u"common-visit"_s, arguments, "private", u"2").figure / kKibibytesPerMebibyte;
        },
        [&] {
            const QString database = device + u"/My Documents/rvnclient.cdb"_s;
            return run(u"minimal-list"_s, {database}, "private", u"2").figure / kKibibytesPerMebibyte;
        });
}

Result measureWakeups() {
    return {.ours = idleWakeups(u"--fullscreen"_s), .peer = 1, .unit = "/s"};
}

Result measureDeskWakeups() {
    return {.ours = idleWakeups(u"--desk"_s), .peer = 1, .unit = "/s"};
}

}  // namespace bench
