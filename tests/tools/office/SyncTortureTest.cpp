#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <array>
#include <cstdlib>
#include <random>

#include "books/PaymentJournal.h"
#include "books/days/Terminal.h"
#include "platform/Clock.h"
#include "tools/office/SyncTest.h"

namespace test {
namespace {

int number(const char* name, int usual) {
    const char* const text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : usual;
}

/// Stands between terminals and the server, and loses the line after so many bytes of both directions.
class LineCutter {
  public:
    explicit LineCutter(int serverPort) : serverPort_(serverPort) {
        EXPECT_TRUE(listener_.listen(QHostAddress::LocalHost));
        QObject::connect(&listener_, &QTcpServer::newConnection, &listener_, [this] { connectThrough(); });
    }

    QString port() const { return QString::number(listener_.serverPort()); }
    /// Of each connection from now on; never below 0.
    void cutAfter(qint64 bytes) { limit_ = bytes; }

  private:
    void connectThrough() {
        QTcpSocket* const terminal = listener_.nextPendingConnection();
        auto* const server = new QTcpSocket(terminal);
        const auto left = std::make_shared<qint64>(limit_);
        const auto pass = [=](QTcpSocket* from, QTcpSocket* to) {
            QByteArray bytes = from->readAll();
            if (*left >= 0) {
                bytes.truncate(*left);
                *left -= bytes.size();
            }
            if (to->state() != QAbstractSocket::UnconnectedState) to->write(bytes);
            if (*left != 0) return;
            // What was let through arrives; then nobody hears of the other.
            if (to->state() == QAbstractSocket::ConnectedState) to->flush();
            terminal->abort();
            server->abort();
        };
        QObject::connect(terminal, &QTcpSocket::readyRead, server, [=] { pass(terminal, server); });
        QObject::connect(server, &QTcpSocket::readyRead, terminal, [=] { pass(server, terminal); });
        QObject::connect(terminal, &QTcpSocket::disconnected, server, [=] {
            server->disconnectFromHost();
            terminal->deleteLater();
        });
        QObject::connect(server, &QTcpSocket::disconnected, terminal,
                         [=] { terminal->disconnectFromHost(); });
        // A server that is not there is one that has gone.
        QObject::connect(server, &QTcpSocket::errorOccurred, terminal, [=] { terminal->abort(); });
        server->connectToHost(QStringLiteral("localhost"), quint16(serverPort_));
    }

    QTcpServer listener_;
    int serverPort_;
    qint64 limit_ = -1;
};

/// Terminals at work on random days, with the same salesmen and numbers, whose syncs are killed, whose line
/// is cut and whose server dies and loses what it had just said to have.
class SyncTorture : public SyncTest {
  protected:
    struct Worker {
        std::unique_ptr<days::Terminal> terminal;
        QString folder;
        QString name;
    };

    SyncTorture() : cutter_(cluster().port()) {
        std::printf("ROVANA_TEST_SEED=%u\n", seed_);
        // The days have a clock of their own.
        sql(u"CREATE OR REPLACE FUNCTION office.refusal(their_schema integer, their_clock timestamptz) "
            "RETURNS text LANGUAGE sql STABLE RETURN NULL"_s);
        for (Worker& worker : workers_) {
            worker.terminal = std::make_unique<days::Terminal>();
            worker.folder = platform::device::folder();
            worker.name = QString::number(&worker - workers_.data() + 1);
            worker.terminal->begin([](const days::Event&) {});
            const QStringList users{u"A"_s, u"B"_s, u"C"_s, u"Z"_s};
            EXPECT_EQ(enrolFolder(worker.folder, worker.name, users, {u"--port"_s, cutter_.port()}).err, "");
        }
        // The server may forget all that comes after this.
        sql(u"CHECKPOINT"_s);
    }
    ~SyncTorture() override {
        for (Worker& worker : workers_) worker.terminal.reset();
    }

    unsigned upTo(unsigned bound) { return unsigned(random_()) % bound; }

    void work(const Worker& worker, int taps) {
        platform::device::setFolder(worker.folder);
        while (taps > 0) {
            const auto tap = days::Tap(upTo(unsigned(days::Tap::Count)));
            // The storage's faults are tried where they strike.
            if (tap == days::Tap::Fault || !worker.terminal->can(tap)) continue;
            if (tap == days::Tap::Back && upTo(3) != 0) continue;
            worker.terminal->tap({tap, upTo(9973), upTo(9967)});
            --taps;
        }
    }
    /// Back to the menu: what the terminals share in this process belongs to one at a time.
    void leave(const Worker& worker) {
        for (int i = 0; i < 40 && !worker.terminal->isAtMenu(); ++i)
            worker.terminal->tap({days::Tap::Back, 0, 0});
        if (!worker.terminal->isAtMenu()) worker.terminal->tap({days::Tap::Kill, 0, 0});
    }
    /// No payment is open any more, and nothing on the way to the card.
    void settle(const Worker& worker) {
        platform::device::setFolder(worker.folder);
        leave(worker);
        for (int i = 0; i < 500 && books::hasUnsettledPayments(); ++i)
            worker.terminal->tap({days::Tap::Login, upTo(9973), 0});
        worker.terminal->tap({days::Tap::Kill, 0, 0});
        EXPECT_TRUE(books::preparedPayments().isEmpty());
    }

    static Ended syncThrough(const Worker& worker, int killAfterMs = -1) {
        const QString clock = platform::clock::now().toString(u"yyyy-MM-dd HH:mm"_s);
        return runProgram(u"rovana-sync"_s, {u"--device"_s, worker.folder, u"--clock"_s, clock}, killAfterMs);
    }

    void syncBadly(const Worker& worker) {
        QTimer death;
        bool isDead = false;
        switch (upTo(4)) {
            case 0: EXPECT_EQ(syncThrough(worker).exitCode, 0); return;
            case 1:
                syncThrough(worker, int(upTo(120)));
                ++kills_;
                return;
            case 2:
                ++cuts_;
                cutter_.cutAfter(upTo(20000));
                syncThrough(worker);
                cutter_.cutAfter(-1);
                return;
            default:
                ++deaths_;
                death.setSingleShot(true);
                QObject::connect(&death, &QTimer::timeout, [&] {
                    cluster().kill();
                    isDead = true;
                });
                death.start(int(upTo(120)));
                syncThrough(worker);
                if (!isDead) cluster().kill();
                cluster().start();
        }
    }

    unsigned seed_ = unsigned(number("ROVANA_TEST_SEED", 20261122));
    std::mt19937 random_{seed_};
    LineCutter cutter_;
    std::array<Worker, 3> workers_;
    int kills_ = 0;
    int cuts_ = 0;
    int deaths_ = 0;
};

TEST_F(SyncTorture, NothingIsLostOrDoubled) {
    const int runs = number("ROVANA_TORTURE_RUNS", 30);
    for (int run = 0; run < runs && !HasFailure(); ++run) {
        const Worker& worker = workers_[upTo(unsigned(workers_.size()))];
        work(worker, 20 + int(upTo(120)));
        syncBadly(worker);
        leave(worker);
    }
    int lost = 0;
    int doubled = 0;
    platform::Won balances;
    for (const Worker& worker : workers_) {
        settle(worker);
        // Days that are long over are looked at once a day.
        QFile::remove(worker.folder + u"/office/swept"_s);
        EXPECT_EQ(syncThrough(worker).exitCode, 0);
        const Ended last = syncThrough(worker);
        EXPECT_EQ(last.out, kNothing) << last.err;
        const auto [gone, extra] = expectSameRows(worker.folder, worker.name);
        lost += gone;
        doubled += extra;
        for (const QString& balance : on(worker.folder, u"SELECT CJMONEY FROM GARAE"_s))
            balances += platform::parseWon(balance) - platform::Won(100000);
    }
    EXPECT_EQ(
        sql(u"SELECT terminal, kind, ddate, number, userid FROM office.document WHERE state = 'missing'"_s),
        QStringList());
    EXPECT_EQ(sql(u"SELECT coalesce(sum(amount), 0) FROM office.movement WHERE gcode <> 'XXXX'"_s).value(0),
              platform::formatWon(balances));
    const QString documents =
        sql(u"SELECT count(*), coalesce(sum(revision), 0) FROM office.document"_s).value(0);
    std::printf("office: %d syncs, %d killed, %d lines cut, %d servers killed; %s documents, revisions\n",
                runs, kills_, cuts_, deaths_, documents.toUtf8().constData());
    std::printf("torture office %d %d %d %d %d\n", runs, kills_ + deaths_, cuts_, lost, doubled);
}

}  // namespace
}  // namespace test
