// A short soak: the program plays its visits, judges them, and prints its figures.

#include <QCoreApplication>
#include <QProcess>
#include <QRegularExpression>
#include <stdexcept>

#include "Bench.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr double kMostGrowth = 5;  ///< Per cent.

}  // namespace

Result measureSoak() {
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + u"/rovana-soak"_s, {u"1500"_s});
    process.waitForFinished(-1);
    const QString line = QString::fromUtf8(process.readLine());
    static const QRegularExpression figures(u" ([0-9.]+) visits/s, growth ([-0-9.]+) %"_s);
    const QRegularExpressionMatch found = figures.match(line);
    if (!found.hasMatch()) throw std::runtime_error(process.readAllStandardError().toStdString());
    const double growth = found.captured(2).toDouble();
    // Growth alone would pass a terminal that leaves files open.
    if (process.exitCode() != 0 && growth <= kMostGrowth) throw std::runtime_error(line.toStdString());
    const QString note = u" growth=%1% speed=%2visits/s"_s.arg(found.captured(2), found.captured(1));
    return {.ours = 100 + growth, .peer = 100, .unit = "%", .note = note.toStdString()};
}

}  // namespace bench
