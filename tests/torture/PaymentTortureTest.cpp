#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <map>
#include <memory>
#include <random>

#include "support/PrintQt.h"

/// Kills the terminal at any moment of a card payment and of the question about it, lets the host fail in
/// each of its ways meanwhile, and then compares what the host has charged with what the slips say.
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRuns = 40;
constexpr qint64 kLongMs = 150'000;  ///< A slow machine does with the fewest runs.
constexpr int kFewestRuns = 8;
constexpr int kPatienceMs = 60'000;

const QString kSecondSlip =
    u"press 102.1044\nrow2 132.1054 =강나루마트\npress 134.1003 450.1097 450.1003\n"_s;

/// What the salesman does when the exchange has failed; where it has not, the script ends there.
constexpr QStringView kAfterwards[] = {u"", u"answer ok\npress 449.1000\nanswer ok\n",
                                       u"answer ok\nswipe good\nanswer ok\nkeys 1234 ok\n"};

constexpr QStringView kFaults[] = {
    u"",      u"",       u"",      u"refuse",   u"close",    u"silent",  u"late 0.3", u"late 2",
    u"split", u"double", u"stray", u"truncate", u"oversize", u"garbage", u"badmac",   u"approve-then-close"};

QString program(const QString& name) {
    return QStringLiteral(ROVANA_BIN "/") + name;
}

class PaymentTorture : public testing::Test {
  protected:
    PaymentTorture() {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        for (QProcess* process : {&terminal_, &tool_, &host_}) process->setProcessEnvironment(environment);
        terminal_.setProcessChannelMode(QProcess::MergedChannels);
    }
    ~PaymentTorture() override {
        for (QProcess* process : {&terminal_, &host_}) stop(process);
    }

    static void stop(QProcess* process) {
        if (process->state() == QProcess::NotRunning) return;
        process->kill();  // SIGKILL: neither has a moment left.
        process->waitForFinished();
    }

    void runTool(const QStringList& arguments) {
        tool_.start(program(u"rovanactl"_s), arguments);
        ASSERT_TRUE(tool_.waitForFinished(kPatienceMs) && tool_.exitCode() == 0)
            << arguments.join(u' ').toStdString() << tool_.readAllStandardError().toStdString();
    }
    void copyDevice(const QString& from, const QString& to) {
        QDir(to).removeRecursively();
        tool_.start(u"cp"_s, {u"-a"_s, from, to});
        ASSERT_TRUE(tool_.waitForFinished(kPatienceMs) && tool_.exitCode() == 0);
    }
    void startHost(const QStringList& faults) {
        stop(&host_);
        host_.start(program(u"rovana-cardhost"_s),
                    QStringList{u"--dir"_s, hostFolder(), u"--demo"_s} + faults);
        while (!host_.canReadLine()) ASSERT_TRUE(host_.waitForReadyRead(kPatienceMs));
        const QByteArray line = host_.readLine().trimmed();
        runTool({u"card-host"_s, u"--device"_s, device(), u"--host"_s, u"127.0.0.1"_s, u"--port"_s,
                 QString::fromLatin1(line.mid(line.lastIndexOf(':') + 1)), u"--key"_s,
                 hostFolder() + u"/host.pub"_s});
    }
    void startTerminal(const QString& steps, QStringView time) {
        QFile script(folder_.filePath(u"steps.visit"_s));
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write(u"clock 2026-11-21 %1\ntimeout 25\nlogin A 1111\n%2"_s.arg(time, steps).toUtf8());
        script.close();
        terminal_.start(program(u"rovana-play"_s), {script.fileName(), u"--device"_s, device()});
        ASSERT_TRUE(terminal_.waitForStarted());
    }
    /// Plays to the end; false when a step was missed.
    bool play(const QString& steps, QStringView time) {
        startTerminal(steps, time);
        const bool isDone = terminal_.waitForFinished(kPatienceMs) && terminal_.exitCode() == 0;
        said_ = terminal_.readAll();
        return isDone;
    }

    /// The first column of every row, joined by blanks; what cannot be read yet is empty.
    static QString read(const QString& file, const char* select) {
        // Read-only: what a kill left behind is the terminal's to repair.
        sqlite3* opened = nullptr;
        sqlite3_open_v2(file.toUtf8().constData(), &opened, SQLITE_OPEN_READONLY, nullptr);
        const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, &sqlite3_close);
        sqlite3_busy_timeout(opened, 1000);
        QStringList found;
        const auto addRow = [](void* rows, int, char** columns, char**) {
            static_cast<QStringList*>(rows)->append(QString::fromUtf8(columns[0]));
            return 0;
        };
        sqlite3_exec(opened, select, addRow, &found, nullptr);
        return found.join(u' ');
    }
    QString onTerminal(const char* select) const {
        return read(device() + u"/My Documents/rvnclient.cdb"_s, select);
    }
    QString atHost(const char* select) const { return read(hostFolder() + u"/ledger.db"_s, select); }

    /// Kills the terminal a little after one of the moments of a payment, or lets it come to its end.
    QString killSomewhere(int moment, int delayUs) {
        const QString exchanges = atHost("SELECT count(*) FROM exchange");
        const QString settled = onTerminal("SELECT group_concat(State) FROM PAYJOURNAL");
        const auto isReached = [&] {
            switch (moment) {
                case 0:  // The card is asked for.
                    return onTerminal("SELECT count(*) FROM MTMOK") != u"0";
                case 1:  // The journal has the payment, or another state of it.
                    return onTerminal("SELECT group_concat(State) FROM PAYJOURNAL") != settled;
                case 2:  // The host has decided.
                    return atHost("SELECT count(*) FROM exchange") != exchanges;
                default:  // The terminal knows.
                    return onTerminal("SELECT count(*) FROM MTMOK WHERE BANKTRANNO <> ''") != u"0";
            }
        };
        while (moment < kMoments - 1 && terminal_.state() != QProcess::NotRunning && !isReached()) {
            if (terminal_.waitForFinished(1)) break;
        }
        if (moment < kMoments - 1) {
            ::usleep(useconds_t(delayUs));
            ++kills_;
            stop(&terminal_);
        } else {
            terminal_.waitForFinished(kPatienceMs);
        }
        return QString::fromUtf8(terminal_.readAll());
    }

    int any(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }
    QStringList anyFault() {
        const QStringView fault = kFaults[any(int(std::size(kFaults)))];
        if (fault.isEmpty()) return {};
        ++faults_[fault.toString()];
        return {u"--fault"_s, fault.toString() + u"@1"_s};
    }

    QString device() const { return folder_.filePath(u"device"_s); }
    QString hostFolder() const { return folder_.filePath(u"host"_s); }

    static constexpr int kMoments = 5;

    QTemporaryDir folder_;
    QProcess terminal_;
    QProcess tool_;
    QProcess host_;
    QByteArray said_;
    std::mt19937 random_;
    int kills_ = 0;
    std::map<QString, int> faults_;
};

TEST_F(PaymentTorture, EverySlipIsPaidOnceAsTheHostHasCharged) {
    const bool isSeeded = qEnvironmentVariableIsSet("ROVANA_TEST_SEED");
    const unsigned seed =
        isSeeded ? unsigned(qEnvironmentVariableIntValue("ROVANA_TEST_SEED")) : std::random_device{}();
    const int asked = qEnvironmentVariableIntValue("ROVANA_TORTURE_RUNS");
    std::printf("ROVANA_TEST_SEED=%u\n", seed);

    const QString fresh = folder_.filePath(u"fresh"_s);
    runTool({u"init"_s, device(), u"--demo"_s, u"--date"_s, u"2026-11-21"_s});
    runTool({u"import"_s, u"--device"_s, device()});
    ASSERT_TRUE(
        play(u"press 102.1044 132.1002 143.1035\nrow2 144.1054 =강나루마트\npress 134.1010 keys 1001 ok 3 "
             "next 12 ok\npress 134.1003 450.1000\nquit\n"_s,
             u"09:00"))
        << said_.constData();
    copyDevice(device(), fresh);

    QElapsedTimer elapsed;
    elapsed.start();
    int run = 0;
    for (; run < (asked > 0 ? asked : kRuns); ++run) {
        if (asked <= 0 && run >= kFewestRuns && elapsed.elapsed() > kLongMs) break;
        random_.seed(seed + unsigned(run));
        QString story = u"run %1, seed %2:"_s.arg(run).arg(seed + unsigned(run));
        copyDevice(fresh, device());
        QDir(hostFolder()).removeRecursively();

        // The payment, then up to two terminals that ask about it and are killed in their turn.
        for (int round = 0; round < 3; ++round) {
            const QStringList fault = anyFault();
            startHost(fault);
            const int moment = any(kMoments);
            const int delayUs = any(2) == 0 ? any(3000) : any(60000);
            const QString steps = round == 0
                                      ? kSecondSlip + u"patience 10\nswipe good 1234 ok\npatience 2\n"_s +
                                            kAfterwards[any(int(std::size(kAfterwards)))].toString()
                                      : u"answer ok\nanswer no\nexpect screen 102\n"_s;
            story += u"\n  round %1: fault \"%2\", killed at %3 after %4 us"_s.arg(round)
                         .arg(fault.value(1))
                         .arg(moment)
                         .arg(delayUs);
            startTerminal(steps + u"quit\n"_s, u"09:05");
            story += u"\n    "_s + killSomewhere(moment, delayUs);
            const bool isOpen =
                onTerminal("SELECT count(*) FROM PAYJOURNAL WHERE State IN ('sent', 'unknown')") != u"0";
            if (!isOpen || any(2) == 0) break;
        }

        // In peace: what is open is settled at the login, as the host knows it, and an unpaid slip is paid.
        startHost({});
        QString steps = u"patience 20\n"_s;
        const QString open =
            onTerminal("SELECT upper(Number) FROM PAYJOURNAL WHERE State IN ('sent', 'unknown')");
        const bool isCharged = atHost("SELECT count(*) FROM payment") != u"0";
        if (!open.isEmpty()) {
            const QString ofOpen = atHost(
                "SELECT hex(message_number) FROM exchange JOIN payment ON payment.exchange = exchange.id");
            steps +=
                ofOpen == open ? u"answer ok\nexpect caption 명세서출력\nanswer no\n"_s : u"answer ok\n"_s;
        }
        steps += u"expect screen 102\n"_s;
        if (!isCharged) {
            steps += kSecondSlip +
                     u"swipe good 1234 ok\nexpect caption 구매자용 명세서출력\nanswer no\n"
                     "press 449.1003\nexpect screen 102\n"_s;
        }
        EXPECT_TRUE(play(steps + u"quit\n"_s, u"09:15")) << said_.constData();

        EXPECT_EQ(atHost("SELECT id || '=' || amount FROM payment"), u"1=130500") << "charged once";
        EXPECT_EQ(onTerminal("SELECT CAST(BANKTRANNO AS INTEGER) || '=' || CardMoney FROM MTMOK"),
                  u"1=130500");
        EXPECT_EQ(onTerminal("SELECT BANKTRANNO FROM PAYJOURNAL WHERE State = 'approved'"), u"000000000001");
        EXPECT_EQ(onTerminal("SELECT Number FROM PAYJOURNAL WHERE State IN ('sent', 'unknown')"), u"");
        EXPECT_EQ(onTerminal("SELECT DISTINCT WorkGubun FROM MTM WHERE JunNo = '5001'"), u"결제");
        EXPECT_EQ(onTerminal("SELECT CJMONEY FROM GARAE WHERE GCODE = '0016'"), u"2821400");
        EXPECT_EQ(onTerminal("PRAGMA integrity_check"), u"ok");
        ASSERT_FALSE(HasFailure()) << story.toStdString();
    }
    QString faults;
    for (const auto& [fault, times] : faults_) faults += u" %1 %2,"_s.arg(fault).arg(times);
    std::printf("%d runs, %d kills, faults:%s lost 0, doubled 0\n", run, kills_, qPrintable(faults));
}

}  // namespace
