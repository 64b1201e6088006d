// The start of the terminal's program, up to the painted login screen of a demonstration device, beside a
// dialog of twelve buttons that is made of Qt alone: the time from outside and the most memory held.

#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>
#include <stdexcept>

#include "Bench.h"
#include "Folder.h"
#include "platform/adoce/DatabaseFile.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRuns = 15;
constexpr double kKibibytesPerMebibyte = 1024;

QString program(const QString& name) {
    return QCoreApplication::applicationDirPath() + u'/' + name;
}

struct FirstPaint {
    double milliseconds;  ///< From before the process is started.
    double mebibytes;     ///< The most that was resident.
};

FirstPaint runToFirstPaint(const QString& name, const QStringList& arguments) {
    QProcess process;
    // Both draw as many pixels for each of theirs: the terminal's program enlarges its screen by itself.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_SCALE_FACTOR"_s, u"2"_s);
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
        words[0] != "painted" || words[1].toDouble() <= 0) {
        throw std::runtime_error(
            (name + u" did not paint: "_s + QString::fromLocal8Bit(process.readAllStandardError()))
                .toStdString());
    }
    return {time, words[1].toDouble() / kKibibytesPerMebibyte};
}

void makeDemonstration(const QString& device) {
    for (const QStringList& arguments :
         {QStringList{u"init"_s, device, u"--demo"_s}, QStringList{u"import"_s, u"--device"_s, device}}) {
        QProcess process;
        process.start(program(u"rovanactl"_s), arguments);
        if (!process.waitForFinished() || process.exitCode() != 0) {
            throw std::runtime_error("no demonstration device");
        }
    }
}

Result compareFirstPaints(const char* unit, double FirstPaint::*figure) {
    const QTemporaryDir folder;
    const QString device = folder.filePath(u"device"_s);
    makeDemonstration(device);
    return compare(
        kRuns, unit,
        [&] {
            return runToFirstPaint(u"login-screen"_s, {u"--device"_s, device}).*figure;
        },
        [&] { return runToFirstPaint(u"minimal-dialog"_s, {}).*figure; });
}

}  // namespace

Result measureStartup() {
    return compareFirstPaints("ms", &FirstPaint::milliseconds);
}

Result measureMemory() {
    return compareFirstPaints("MiB", &FirstPaint::mebibytes);
}

}  // namespace bench
