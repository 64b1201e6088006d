#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <random>

#include "platform/Sqlite.h"
#include "support/PrintQt.h"

namespace test {

using namespace Qt::Literals::StringLiterals;

/// The real programs on a device folder of the test's own, to be started, killed and looked into. What
/// happens is chosen by a seed that is told: ROVANA_TEST_SEED repeats it, ROVANA_TORTURE_RUNS makes it
/// longer.
class TortureTest : public testing::Test {
  protected:
    static constexpr int kPatienceMs = 60'000;
    static constexpr qint64 kLongMs = 90'000;

    TortureTest() {
        for (QProcess* process : {&terminal_, &tool_}) prepare(process);
        terminal_.setProcessChannelMode(QProcess::MergedChannels);
        elapsed_.start();
        std::printf("ROVANA_TEST_SEED=%u\n", seed_);
    }
    ~TortureTest() override {
        for (QProcess* process : {&terminal_, &tool_}) stop(process);
    }

    static QString program(const QString& name) { return QStringLiteral(ROVANA_BIN "/") + name; }

    static void prepare(QProcess* process) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        process->setProcessEnvironment(environment);
    }
    static void stop(QProcess* process) {
        if (process->state() == QProcess::NotRunning) return;
        process->kill();  // SIGKILL: it has no moment left.
        process->waitForFinished();
    }

    void runTool(const QStringList& arguments) {
        tool_.start(program(u"rovanactl"_s), arguments);
        ASSERT_TRUE(tool_.waitForFinished(kPatienceMs) && tool_.exitCode() == 0)
            << arguments.join(u' ').toStdString() << tool_.readAllStandardError().toStdString()
            << tool_.readAllStandardOutput().toStdString();
    }
    void copyDevice(const QString& from, const QString& to) {
        QDir(to).removeRecursively();
        tool_.start(u"cp"_s, {u"-a"_s, from, to});
        ASSERT_TRUE(tool_.waitForFinished(kPatienceMs) && tool_.exitCode() == 0);
    }
    /// Plays the steps of a visit on the device, in a process of its own.
    void startTerminal(const QString& steps) {
        QFile script(folder_.filePath(u"steps.visit"_s));
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write(steps.toUtf8());
        script.close();
        terminal_.start(program(u"rovana-play"_s), {script.fileName(), u"--device"_s, device()});
        ASSERT_TRUE(terminal_.waitForStarted());
    }
    /// Waits for the end; false when a step was missed.
    bool finishTerminal() {
        const bool isDone = terminal_.waitForFinished(kPatienceMs) &&
                            terminal_.exitStatus() == QProcess::NormalExit && terminal_.exitCode() == 0;
        said_ = terminal_.readAll();
        return isDone;
    }

    /// The rows of one or more SELECTs, columns joined by "|" and rows by `between`; what cannot be read yet
    /// is empty.
    static QString read(const QString& file, const char* select, QStringView between = u" ") {
        // Read-only: what a kill left behind is the terminal's to repair.
        platform::SqliteFile database(file, platform::SqliteFile::Mode::ReadOnly);
        QStringList found;
        database.forEachRow(QString::fromUtf8(select), {}, [&](const QStringList& row) {
            found << row.join(u'|');
            return true;
        });
        return found.join(between);
    }
    /// Loads the waiting files, as on the day of the visits: prices of another day would be told as old.
    void importFiles() {
        runTool({QStringLiteral("import"), QStringLiteral("--device"), device()});
        platform::SqliteFile(databaseFile(), platform::SqliteFile::Mode::Existing)
            .execute(u"UPDATE MASTERLOAD SET LoadedAt = '2026-11-21T08:00:00'"_s);
    }
    QString onTerminal(const char* select) const { return read(databaseFile(), select); }

    int any(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

    /// Whether there is another run: as many as are asked for within ROVANA_TORTURE_SECONDS, else `usual`, of
    /// which a slow machine makes only `fewest`.
    bool goesOn(int run, int usual, int fewest) const {
        const int asked = qEnvironmentVariableIntValue("ROVANA_TORTURE_RUNS");
        const int seconds = qEnvironmentVariableIntValue("ROVANA_TORTURE_SECONDS");
        const qint64 mostMs = seconds > 0 ? seconds * 1000LL : kLongMs;
        if (asked > 0) return run < asked && (seconds <= 0 || elapsed_.elapsed() < mostMs);
        return run < usual && (run < fewest || elapsed_.elapsed() < mostMs);
    }

    /// The line from which the script makes its table.
    void report(const char* what, int runs) const {
        std::printf("torture %s %d %d %d %d %d\n", what, runs, kills_, faultsMade_, lost_, doubled_);
    }

    QString device() const { return folder_.filePath(u"device"_s); }
    QString databaseFile() const { return device() + u"/My Documents/rvnclient.cdb"_s; }

    QTemporaryDir folder_;
    QProcess terminal_;
    QProcess tool_;
    QByteArray said_;
    // Half of the numbers, since the variable is read as an int.
    const unsigned seed_ = qEnvironmentVariableIsSet("ROVANA_TEST_SEED")
                               ? unsigned(qEnvironmentVariableIntValue("ROVANA_TEST_SEED"))
                               : std::random_device{}() >> 1;
    std::mt19937 random_;
    QElapsedTimer elapsed_;
    int kills_ = 0;
    int faultsMade_ = 0;
    int lost_ = 0;     ///< What should be there and is not.
    int doubled_ = 0;  ///< What is there once more than it should be.
};

}  // namespace test
