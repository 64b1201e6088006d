#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <string>
#include <vector>

namespace {

using namespace Qt::Literals::StringLiterals;

/// A visit that takes longer hangs.
constexpr int kLongestVisitMs = 240000;

/// The day of the visits; the orders of the demonstration data are for it.
constexpr QStringView kDay = u"2026-11-21";

std::vector<QString> visits() {
    std::vector<QString> files;
    const QDir folder(QStringLiteral(ROVANA_TESTS_DIR "/visits"));
    for (const QFileInfo& file : folder.entryInfoList({u"*.visit"_s}, QDir::Files, QDir::Name))
        files.push_back(file.absoluteFilePath());
    return files;
}

std::string caseName(const testing::TestParamInfo<QString>& visit) {
    QString name = QFileInfo(visit.param).completeBaseName();
    for (QChar& character : name) {
        if (!character.isLetterOrNumber() || character.unicode() > 127) character = u'_';
    }
    return name.toStdString();
}

struct Outcome {
    bool isDone = false;
    std::string output;
};

/// Runs one of the programs of this build without a window.
Outcome run(const QString& program, const QStringList& arguments) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(ROVANA_BIN "/") + program, arguments);
    const bool hasEnded = process.waitForFinished(kLongestVisitMs);
    Outcome outcome;
    outcome.output = process.readAll().toStdString();
    if (!hasEnded) {
        outcome.output += process.errorString().toStdString();
        process.kill();
        process.waitForFinished();
    }
    outcome.isDone = hasEnded && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (hasEnded && process.exitStatus() == QProcess::CrashExit) outcome.output += "the program crashed\n";
    return outcome;
}

class Visit : public testing::TestWithParam<QString> {};

TEST_P(Visit, Plays) {
    const QTemporaryDir folder;
    const QString device = folder.filePath(u"device"_s);
    const Outcome made = run(u"rovanactl"_s, {u"init"_s, device, u"--demo"_s, u"--date"_s, kDay.toString()});
    ASSERT_TRUE(made.isDone) << made.output;
    const Outcome played = run(u"rovana-play"_s, {GetParam(), u"--device"_s, device});
    EXPECT_TRUE(played.isDone) << played.output;
}

INSTANTIATE_TEST_SUITE_P(Tests, Visit, testing::ValuesIn(visits()), caseName);

}  // namespace
