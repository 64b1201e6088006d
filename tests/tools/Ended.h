#pragma once

#include <gmock/gmock.h>

#include <QDir>
#include <QEventLoop>
#include <QProcess>
#include <QTextStream>
#include <QTimer>

#include "support/PrintQt.h"

namespace test {

using namespace Qt::Literals::StringLiterals;
using ::testing::HasSubstr;
using ::testing::Not;

struct Ended {
    int exitCode;
    std::string out;
    std::string err;
};

/// Runs a program's function in this process.
template <typename Run>
Ended runHere(Run* run, const QStringList& arguments, QString input = {}) {
    QString out;
    QString err;
    QTextStream inStream(&input);
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    const int exitCode = run(arguments, inStream, outStream, errStream);
    return {exitCode, out.toStdString(), err.toStdString()};
}

/// Runs a program of the build, or of a path, which is killed after so many milliseconds unless that is below
/// 0. Meanwhile the event loop runs.
inline Ended runProgram(const QString& name, const QStringList& arguments, int killAfterMs = -1) {
    QProcess process;
    QEventLoop loop;
    QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(killAfterMs >= 0 ? killAfterMs : 300'000, &process, &QProcess::kill);
    process.start(QDir(QStringLiteral(ROVANA_BIN)).filePath(name), arguments);
    if (!process.waitForStarted()) return {-1, "", process.errorString().toStdString()};
    loop.exec();
    return {process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

}  // namespace test
