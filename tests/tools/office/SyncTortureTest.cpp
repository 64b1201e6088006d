#include <QTimer>
#include <array>
#include <cstdlib>
#include <map>
#include <random>

#include "books/PaymentJournal.h"
#include "books/days/Terminal.h"
#include "platform/Clock.h"
#include "tools/office/LineCutter.h"
#include "tools/office/SyncTest.h"

namespace test {
namespace {

constexpr int kUsualRuns = 30;
constexpr int kComparedDays = 5;

int number(const char* name, int usual) {
    const char* const text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : usual;
}

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
            u"RETURNS text "
            "LANGUAGE sql STABLE RETURN NULL"_s);
        for (Worker& worker : workers_) {
            worker.terminal = std::make_unique<days::Terminal>();
            worker.folder = platform::device::folder();
            worker.name = QString::number(&worker - workers_.data() + 1);
            worker.terminal->begin([](const days::Event&) {});
            enrolFolder(worker.folder, worker.name, {u"A"_s, u"B"_s, u"C"_s, u"Z"_s}, cutter_.port());
        }
        // The server may forget all that comes after this.
        sql(u"CHECKPOINT"_s);
    }
    ~SyncTorture() override {
        for (Worker& worker : workers_) worker.terminal.reset();
    }

    unsigned upTo(unsigned bound) { return unsigned(random_()) % bound; }

    void takeTurn(const Worker& worker) { platform::device::setFolder(worker.folder); }

    /// A finger's steps, wherever they lead.
    void work(const Worker& worker, int taps) {
        takeTurn(worker);
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
        takeTurn(worker);
        leave(worker);
        for (int i = 0; i < 500 && books::hasUnsettledPayments(); ++i)
            worker.terminal->tap({days::Tap::Login, upTo(9973), 0});
        worker.terminal->tap({days::Tap::Kill, 0, 0});
        EXPECT_TRUE(books::preparedPayments().isEmpty());
    }

    OfficeEnded syncThrough(const Worker& worker, int killAfterMs = -1) {
        const QString clock = platform::clock::now().toString(u"yyyy-MM-dd HH:mm"_s);
        return cutter_.run(QStringLiteral(ROVANA_BIN "/rovana-sync"),
                           {u"--device"_s, worker.folder, u"--clock"_s, clock}, killAfterMs);
    }

    /// One sync, and what befalls it.
    void syncBadly(const Worker& worker) {
        QTimer death;
        bool isDead = false;
        switch (upTo(4)) {
            case 0: EXPECT_EQ(syncThrough(worker).exitCode, 0); return;
            case 1:
                ++kills_;
                syncThrough(worker, int(upTo(120)));
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

    /// Rows on one side that the other lacks: what was lost, and what is there too often.
    std::pair<int, int> compare(const Worker& worker, const QString& table) {
        std::map<QString, int> rows;
        platform::SqliteFile file(worker.folder + u"/My Documents/rvnclient.cdb"_s,
                                  platform::SqliteFile::Mode::ReadOnly);
        const auto here = file.rows(u"SELECT * FROM "_s + table);
        for (const QStringList& row : *here) ++rows[row.join(u'|')];
        for (const QString& row : officeRows(table, worker.name)) --rows[row];
        std::pair<int, int> wrong;
        for (const auto& [row, count] : rows) {
            (count > 0 ? wrong.first : wrong.second) += std::abs(count);
            if (count != 0)
                ADD_FAILURE() << table.toStdString() << (count > 0 ? " lost: " : " doubled: ")
                              << row.toStdString();
        }
        return wrong;
    }

    /// The reports of some of the terminal's days as it prints them, and as the office's views give them.
    void compareReports(const Worker& worker) {
        platform::SqliteFile file(worker.folder + u"/My Documents/rvnclient.cdb"_s,
                                  platform::SqliteFile::Mode::ReadOnly);
        const auto days = file.rows(
            u"SELECT DDate FROM MTMOK GROUP BY 1 ORDER BY COUNT(*) DESC LIMIT %1"_s.arg(kComparedDays));
        for (const QStringList& day : *days) {
            for (const QString& report : {u"sales"_s, u"collections"_s, u"cards"_s}) {
                const OfficeEnded printed = cutter_.run(
                    QStringLiteral(ROVANACTL),
                    {u"totals"_s, u"--device"_s, worker.folder, u"--date"_s, day[0], u"--report"_s, report});
                EXPECT_NE(printed.out, "");
                const OfficeEnded atOffice =
                    this->run({u"day"_s, day[0], u"--terminal"_s, worker.name, u"--report"_s, report});
                EXPECT_EQ(atOffice.out, printed.out) << day[0].toStdString() << atOffice.err << printed.err;
            }
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
    const int runs = number("ROVANA_TORTURE_RUNS", kUsualRuns);
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
        const OfficeEnded last = syncThrough(worker);
        EXPECT_EQ(last.out, "sent 0, deleted 0, waiting 0\n") << last.err;
        for (const QString& table :
             {u"MTM"_s, u"YTM"_s, u"MTMOK"_s, u"PAYJOURNAL"_s, u"PRINTLOG"_s, u"DELETED"_s, u"DAYCLOSE"_s}) {
            const auto [gone, extra] = compare(worker, table);
            lost += gone;
            doubled += extra;
        }
        compareReports(worker);
        platform::SqliteFile file(worker.folder + u"/My Documents/rvnclient.cdb"_s,
                                  platform::SqliteFile::Mode::ReadOnly);
        const auto customers = file.rows(u"SELECT CJMONEY FROM GARAE"_s);
        for (const QStringList& row : *customers)
            balances += platform::parseWon(row[0]) - platform::Won(100000);
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
