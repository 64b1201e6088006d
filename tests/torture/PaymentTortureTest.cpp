#include <sys/stat.h>
#include <unistd.h>

#include <QScopeGuard>
#include <algorithm>

#include "TortureTest.h"
#include "rovana-cardhost/StartedHost.h"
#include "support/Pump.h"

/// Kills the terminal at any moment of a card payment and of the question about it, lets the host fail in
/// each of its ways meanwhile, and then compares what the host has charged with what the slips say.
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRuns = 12;
constexpr int kFewestRuns = 6;  ///< On a slow machine.
/// A terminal that has changed nothing for so long after so long a start waits for a step that does not come.
constexpr int kStartMs = 600;
constexpr int kQuietMs = 450;

/// A payment from the menu to the card, what is on its slip once it is approved, and what the host has taken.
struct Kind {
    const char* name;
    QString steps;
    QString slip;  ///< Kind, number, cash and card.
    int charged;
    QString printState;  ///< Of the sales slip that there is.
};
const QString kVisit = u"press 102.1044\nrow2 132.1054 =강나루마트\npress 134.1003 450.%1 450.1003\n"_s;
const Kind kKinds[] = {
    {"card", kVisit.arg(1097), u"매출 5001 0/130500"_s, 130500, u"결제"_s},
    {"cash", kVisit.arg(1098), u"매출 5001 130500/0"_s, 130500, u"결제"_s},
    {"simple payment", u"press 102.1055 143.1003\npress 104.1126 keys 100000 ok\npress 104.1003\n"_s,
     u"단순결제 7001 0/100000"_s, 100000, u"미발행"_s},
};

/// What the salesman does when the exchange has failed; where it has not, the script ends there.
constexpr QStringView kAfterwards[] = {u"", u"answer ok\npress 449.1000\nanswer ok\n",
                                       u"answer ok\npress 449.1003\nanswer ok\n",
                                       u"answer ok\nswipe good\nanswer ok\nkeys 1234 ok\n"};

constexpr QStringView kFaults[] = {
    u"",      u"",       u"",      u"refuse",   u"close",    u"silent",  u"late 0.2", u"late 1",
    u"split", u"double", u"stray", u"truncate", u"oversize", u"garbage", u"badmac",   u"approve-then-close"};

class PaymentTorture : public test::TortureTest {
  protected:
    PaymentTorture() { test::needApplication(); }
    ~PaymentTorture() override { host_.kill(); }

    /// A host with these faults, at the same port from the first one on.
    void startHost(const QStringList& faults) {
        if (host_.isRunning() && faults.isEmpty() && hostFaults_.isEmpty()) return;
        host_.kill();
        hostFaults_ = faults;
        const QString port = QString::number(host_.port());
        ASSERT_EQ(host_.start(hostFolder(), QStringList{u"--port"_s, port} + faults), QString());
    }
    void startVisit(const QString& steps, QStringView time) {
        startTerminal(u"clock 2026-11-21 %1\nlogin A 1111\n%2"_s.arg(time, steps));
    }
    /// Plays to the end; false when a step was missed.
    bool play(const QString& steps, QStringView time) {
        startVisit(steps, time);
        return finishTerminal();
    }

    QString atHost(const char* select) const { return read(hostFolder() + u"/ledger.db"_s, select); }
    /// The host's payments of this run; `column` of exchange and payment.
    QString charged(const QString& column) const {
        const QString select =
            u"SELECT %1 FROM payment JOIN exchange ON exchange.id = exchange WHERE payment.id > %2"_s.arg(
                column, QString::number(before_));
        return atHost(select.toUtf8().constData());
    }
    QString open() const {
        return onTerminal("SELECT upper(Number) FROM PAYJOURNAL WHERE State IN ('sent', 'unknown')");
    }

    /// Another value whenever terminal or host may have changed their files.
    quint64 stateOfFiles() const {
        quint64 state = 0;
        for (const QString& file :
             {device() + u"/My Documents/rvnclient.cdb"_s, device() + u"/My Documents/rvnclient.cdb-wal"_s,
              hostFolder() + u"/ledger.db"_s, hostFolder() + u"/ledger.db-wal"_s}) {
            struct stat status {};
            ::stat(file.toUtf8().constData(), &status);
            for (const auto part : {status.st_size, status.st_mtim.tv_nsec, status.st_mtim.tv_sec})
                state = state * 31 + quint64(part);
        }
        return state;
    }

    /// Kills the terminal a little after one of the moments of a payment, or when nothing moves any more.
    QString killSomewhere(int moment, int delayUs) {
        // The card is asked for; the journal has the payment, or another state of it; the terminal knows; the
        // host has decided.
        constexpr const char* kMomentsOfTerminal[] = {"SELECT count(*) FROM MTMOK",
                                                      "SELECT group_concat(State) FROM PAYJOURNAL",
                                                      "SELECT count(*) FROM MTMOK WHERE BANKTRANNO <> ''"};
        const auto watched = [&] {
            return moment < 3    ? onTerminal(kMomentsOfTerminal[moment])
                   : moment == 3 ? atHost("SELECT count(*) FROM exchange")
                                 : QString();
        };
        const QString before = watched();
        quint64 state = stateOfFiles();
        qint64 changedMs = kStartMs;
        QElapsedTimer elapsed;
        elapsed.start();
        while (!terminal_.waitForFinished(2) && elapsed.elapsed() - changedMs < kQuietMs) {
            if (stateOfFiles() == state) continue;
            state = stateOfFiles();
            changedMs = std::max(changedMs, elapsed.elapsed());
            if (watched() == before) continue;
            ::usleep(useconds_t(delayUs));
            break;
        }
        if (terminal_.state() != QProcess::NotRunning) ++kills_;
        stop(&terminal_);
        return QString::fromUtf8(terminal_.readAll());
    }

    QStringList anyFault() {
        const QStringView fault = kFaults[any(int(std::size(kFaults)))];
        if (fault.isEmpty()) return {};
        ++faultsMade_;
        return {u"--fault"_s, u"%1@%2"_s.arg(fault).arg(1 + any(2))};
    }

    QString hostFolder() const { return folder_.filePath(u"host"_s); }

    cardhost::StartedHost host_;
    QStringList hostFaults_;
    qint64 before_ = 0;  ///< The host's last payment before this run.
};

TEST_F(PaymentTorture, EverySlipIsPaidOnceAsTheHostHasCharged) {
    const QString fresh = folder_.filePath(u"fresh"_s);
    runTool({u"init"_s, device(), u"--demo"_s, u"--date"_s, u"2026-11-21"_s});
    importFiles();
    ASSERT_TRUE(
        play(u"press 102.1044 132.1002 143.1035\nrow2 144.1054 =강나루마트\npress 134.1010 keys 1001 ok 3 "
             "next 12 ok\npress 134.1003 450.1000\nquit\n"_s,
             u"09:00"))
        << said_.constData();
    startHost({});
    runTool({u"card-host"_s, u"--device"_s, device(), u"--host"_s, u"127.0.0.1"_s, u"--port"_s,
             QString::number(host_.port()), u"--key"_s, hostFolder() + u"/host.pub"_s});
    copyDevice(device(), fresh);

    int run = 0;
    const auto tell = qScopeGuard([&] { report("payments", run); });
    for (; goesOn(run, kRuns, kFewestRuns); ++run) {
        random_.seed(seed_ + unsigned(run));
        const Kind& kind = kKinds[any(int(std::size(kKinds)))];
        QString story =
            u"run %1, seed %2: %3"_s.arg(run).arg(seed_ + unsigned(run)).arg(QLatin1StringView(kind.name));
        copyDevice(fresh, device());
        before_ = atHost("SELECT coalesce(max(id), 0) FROM payment").toLongLong();

        // The payment, then up to two terminals that ask about it and are killed in their turn.
        for (int round = 0; round < 3; ++round) {
            const QStringList fault = anyFault();
            startHost(fault);
            const int moment = any(5);
            const int delayUs = any(2) == 0 ? any(3000) : any(60000);
            const QString steps = round == 0 ? kind.steps + u"patience 10\nswipe good 1234 ok\n"_s +
                                                   kAfterwards[any(int(std::size(kAfterwards)))].toString()
                                             : u"answer ok\nanswer no\nexpect screen 102\n"_s;
            story += u"\n  round %1: fault \"%2\", killed at %3 after %4 us"_s.arg(round)
                         .arg(fault.value(1))
                         .arg(moment)
                         .arg(delayUs);
            startVisit(u"timeout 10\n"_s + steps + u"quit\n"_s, u"09:05");
            story += u"\n    "_s + killSomewhere(moment, delayUs);
            if (open().isEmpty() || any(2) == 0) break;
        }

        // In peace: what is open is settled at the login, as the host knows it, and an unpaid slip is paid.
        const QString number = open();
        // A request of the killed terminal may still wait at the host.
        if (!number.isEmpty()) host_.kill();
        startHost({});
        QString steps = u"patience 20\n"_s;
        const bool isCharged = !charged(u"amount"_s).isEmpty();
        const bool isFound = !number.isEmpty() && charged(u"hex(message_number)"_s) == number;
        const bool isPrepared =
            onTerminal("SELECT count(*) FROM PAYJOURNAL WHERE State = 'prepared'") != u"0";
        if (!number.isEmpty()) {
            steps += isFound ? u"answer ok\nexpect caption 명세서출력\nanswer no\n"_s : u"answer ok\n"_s;
        }
        // The collection of a card that was not charged is as before it, and the salesman is told.
        if (isPrepared && !isFound) steps += u"answer ok\n"_s;
        steps += u"expect screen 102\n"_s;
        if (!isCharged) {
            steps += kind.steps + u"swipe good 1234 ok\n"_s;
            if (kind.steps.contains(u"450")) steps += u"expect caption 구매자용 명세서출력\nanswer no\n"_s;
            steps +=
                u"expect sql \"SELECT COUNT(*) FROM PAYJOURNAL WHERE State = 'approved'\" 1\n"
                "press 449.1003\nexpect screen 102\n"_s;
        }
        EXPECT_TRUE(play(steps + u"quit\n"_s, u"09:15")) << said_.constData();

        const int taken = charged(u"count(*)"_s).toInt();
        const int paid = onTerminal("SELECT count(*) FROM MTMOK WHERE BANKTRANNO <> ''").toInt();
        lost_ += std::max(0, 1 - std::min(taken, paid));
        doubled_ += std::max(0, std::max(taken, paid) - 1);
        EXPECT_EQ(charged(u"payment.id || '=' || amount"_s), u"%1=%2"_s.arg(before_ + 1).arg(kind.charged))
            << "charged once";
        EXPECT_EQ(onTerminal("SELECT Gubun || ' ' || JunNo || ' ' || WonMoney || '/' || CardMoney || ' ' || "
                             "CAST(BANKTRANNO AS INTEGER) FROM MTMOK"),
                  kind.slip + u" %1"_s.arg(before_ + 1));
        EXPECT_EQ(onTerminal("SELECT CAST(BANKTRANNO AS INTEGER) FROM PAYJOURNAL WHERE State = 'approved'"),
                  QString::number(before_ + 1));
        EXPECT_EQ(open(), u"");
        EXPECT_EQ(onTerminal("SELECT DISTINCT WorkGubun FROM MTM WHERE JunNo = '5001'"), kind.printState);
        EXPECT_EQ(onTerminal("SELECT CJMONEY FROM GARAE WHERE GCODE = '0016'"), u"2821400");
        EXPECT_EQ(onTerminal("PRAGMA integrity_check"), u"ok");
        ASSERT_FALSE(HasFailure()) << story.toStdString();
    }
}

}  // namespace
