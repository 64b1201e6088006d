#include <unistd.h>

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QtEndian>
#include <algorithm>
#include <iterator>

#include "TortureTest.h"
#include "platform/Sqlite.h"
#include "support/FaultyStorage.h"

/// Kills the terminal and the import at any call to the storage and at any other moment of a long visit. What
/// is on disk afterwards has to be what stood there between two of its changes.
namespace {

using namespace Qt::Literals::StringLiterals;
using test::StorageFault;

constexpr int kKills = 12;
constexpr int kFewestKills = 6;  ///< On a slow machine.
constexpr int kUncounted = 1'000'000;

const QString kHead = u"clock 2026-11-21 09:05\nlogin A 1111\nexpect shown 102.1044\n"_s;

/// Each begins and ends at the menu and changes what is saved exactly once. What a screen does not take or
/// save without a word, the salesman sees on it, and goes no further.
const QString kChanges[] = {
    // A new slip; opened again and changed.
    u"sale 강나루마트 1001 3 12 1010 2 0\nexpect rows 134.1054 2\npress 134.1137\n"
    "expect sql \"SELECT COUNT(*) FROM MTM WHERE JunNo = '5001'\" 2\npress 134.1001 132.1003\n"_s,
    u"press 102.1044\nrow2 132.1054 =강나루마트\nrow2 134.1054 =1010\nkeys again 5 ok\n"
    "expect sql \"SELECT Box FROM TEMP WHERE PCode = '1010'\" 5\npress 134.1137\n"
    "expect sql \"SELECT Box FROM MTM WHERE PCode = '1010' AND JunNo = '5001'\" 5\n"
    "press 134.1001 132.1003\n"_s,
    // Paid, and paid otherwise.
    u"press 102.1044\nrow 132.1054 =강나루마트\npress 132.1004 450.1098 450.1003 449.1003 142.1003\n"_s,
    u"press 102.1045\nrow2 150.1054 =강나루마트\npress 450.1083 450.1013 keys 20000 ok\n"
    "press 450.1003 142.1003\n"_s,
    // Containers: a new slip, opened again and changed, paid.
    u"press 102.1046 391.1002 143.1035\nrow2 144.1054 =꿀단지갈비\npress 394.1000\nrow2 397.1090 =1028\n"
    "keys 7 next 2 next 3 ok\npress 394.1000\nrow2 397.1090 =1001\nkeys next 4 ok\n"
    "expect rows 394.1054 2\npress 394.1003 450.1000 394.1001 391.1003\n"_s,
    u"press 102.1046\nrow2 391.1054 =6001\nrow2 394.1054 =1001\nkeys again 3 next again 1 ok\n"
    "expect sql \"SELECT FBox FROM YTEMP WHERE PCode = '1001'\" 1\npress 394.1003 450.1000 394.1001 391.1003\n"_s,
    u"press 102.1046\nrow2 391.1054 =6001\npress 394.1003 450.1098 450.1003 142.1003\n"_s,
    // The day's close.
    u"press 102.1053 457.1024\nkeys 85000 ok\npress 458.1003 457.1003\n"_s,
    // Deleted: a collection, containers, and a slip with what hangs on it.
    u"press 102.1045\nrow 150.1054 =6001\npress 150.1001\nanswer ok\nexpect rows 150.1054 1\n"
    "press 150.1003\n"_s,
    u"press 102.1046\nrow 391.1054 =6001\npress 391.1001\nanswer ok\nexpect rows 391.1054 0\n"
    "press 391.1003\n"_s,
    u"press 102.1044\nrow 132.1054 =강나루마트\npress 132.1001\nanswer ok\nanswer ok\npress 132.1003\n"_s,
};

class StorageTorture : public test::TortureTest {
  protected:
    void SetUp() override {
        plan_ = test::shareStorageFaults(planFile().toLocal8Bit().constData());
        ASSERT_NE(plan_, nullptr);
        plan_->skipsSync = true;
        for (QProcess* process : {&terminal_, &import_}) {
            QProcessEnvironment environment = tool_.processEnvironment();
            environment.insert(u"LD_PRELOAD"_s, QStringLiteral(ROVANA_STORAGE_FAULTS));
            environment.insert(QString::fromLatin1(test::kFaultyStorageVariable), planFile());
            // AddressSanitizer wants to be first.
            environment.insert(u"ASAN_OPTIONS"_s,
                               qEnvironmentVariable("ASAN_OPTIONS") + u":verify_asan_link_order=0"_s);
            process->setProcessEnvironment(environment);
        }
        runTool({u"init"_s, device(), u"--demo"_s, u"--date"_s, u"2026-11-21"_s, u"--customers"_s, u"120"_s,
                 u"--prices"_s, u"300"_s});
        copyDevice(device(), delivered());
        const QStringList empty = rows();
        importFiles();
        copyDevice(device(), loaded());
        learnStates(empty);
    }

    /// Plays the visit in peace and finds out what stands on the disk after each of its commits.
    void learnStates(const QStringList& empty) {
        empty_ = empty;
        // Nothing gets from the write-ahead log into the database while this reader reads.
        platform::SqliteFile reader(databaseFile(), platform::SqliteFile::Mode::Existing);
        ASSERT_TRUE(reader.execute(u"PRAGMA journal_mode=WAL; BEGIN; SELECT count(*) FROM MTM"_s));
        plan_->arm(StorageFault::Kill, kUncounted, true);
        QElapsedTimer elapsed;
        elapsed.start();
        startTerminal(script(0));
        EXPECT_TRUE(finishTerminal()) << said_.constData();
        playUs_ = int(elapsed.nsecsElapsed() / 1000);
        calls_ = kUncounted - plan_->before;
        plan_->disarm();

        QFile log(databaseFile() + u"-wal"_s);
        ASSERT_TRUE(log.open(QIODevice::ReadOnly));
        const QByteArray frames = log.readAll();
        const QString copy = folder_.filePath(u"state.cdb"_s);
        states_.clear();
        ASSERT_GT(frames.size(), 32);
        const qsizetype frame = 24 + qFromBigEndian<quint32>(frames.constData() + 8);
        const auto take = [&](qsizetype end) {
            for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s}) QFile::remove(copy + suffix);
            ASSERT_TRUE(QFile::copy(databaseFile(), copy));
            QFile part(copy + u"-wal"_s);
            ASSERT_TRUE(part.open(QIODevice::WriteOnly) && part.write(frames.first(end)) == end);
            part.close();
            const QStringList found = rowsOf(copy);
            if (states_.isEmpty() || states_.last() != found) states_ << found;
        };
        take(0);
        for (qsizetype end = 32 + frame; end <= frames.size(); end += frame) {
            // A frame that ends a commit says how large the database is then.
            if (qFromBigEndian<quint32>(frames.constData() + end - frame + 4) != 0) take(end);
        }
        ASSERT_EQ(states_.size(), qsizetype(std::size(kChanges)) + 1) << "a change is not made at once";
    }

    static QString script(qsizetype done) {
        QString steps = kHead;
        for (auto change = std::begin(kChanges) + done; change != std::end(kChanges); ++change)
            steps += *change + u"expect screen 102\n"_s;
        return steps + u"quit\n"_s;
    }

    /// Every row that is saved, each with its table in front, in order; the slip being written, the ledger of
    /// imports and the prints are aside.
    static QStringList rowsOf(const QString& database) {
        constexpr const char* kSelect =
            "SELECT 'MTM', * FROM MTM; SELECT 'MTMOK', * FROM MTMOK; SELECT 'YTM', * FROM YTM;"
            "SELECT 'DAYCLOSE', * FROM DAYCLOSE; SELECT 'GARAE', * FROM GARAE; SELECT 'PUMMOK', * FROM "
            "PUMMOK;"
            "SELECT 'GARAEDANGA', * FROM GARAEDANGA; SELECT 'GARAEMAJIN', * FROM GARAEMAJIN";
        QStringList rows = read(database, kSelect, u"\n").split(u'\n', Qt::SkipEmptyParts);
        rows.sort();
        return rows;
    }
    QStringList rows() const { return rowsOf(databaseFile()); }

    /// Arms one way to die at a random moment. Returns what to wait before a kill from outside, in
    /// microseconds; 0 where the storage kills.
    int armKill(int calls, int wholeUs) {
        if (any(2) == 0) return 1 + any(std::max(wholeUs, 1));
        plan_->arm(StorageFault::Kill, any(std::max(calls, 1)), true);
        return 0;
    }

    /// Lets the process run into its death, or come to its end before.
    void await(QProcess* process, int delayUs) {
        if (delayUs > 0) {
            ::usleep(useconds_t(delayUs));
            if (process->state() != QProcess::NotRunning && !process->waitForFinished(0)) stop(process);
        } else {
            process->waitForFinished(kPatienceMs);
        }
        plan_->disarm();
        kills_ += process->exitStatus() == QProcess::CrashExit ? 1 : 0;
    }

    static QStringList difference(const QStringList& rows, const QStringList& others) {
        QStringList left;
        std::ranges::set_difference(rows, others, std::back_inserter(left));
        return left;
    }

    /// Counts what the database has too little and too much of, compared with what it may hold.
    void count(const QStringList& found, const QStringList& expected) {
        const QStringList lost = difference(expected, found);
        const QStringList doubled = difference(found, expected);
        lost_ += int(lost.size());
        doubled_ += int(doubled.size());
        EXPECT_TRUE(lost.isEmpty() && doubled.isEmpty()) << "lost:\n"
                                                         << lost.join(u'\n').toStdString() << "\ntoo much:\n"
                                                         << doubled.join(u'\n').toStdString();
    }

    static QStringList ofTable(const QStringList& rows, const QString& table) {
        return rows.filter(QRegularExpression(u'^' + table + u"\\|"_s));
    }

    /// The office's files on the terminal that was delivered, with as many deaths on the way as it takes.
    void importAll() {
        copyDevice(delivered(), device());
        for (bool isKilled = true; isKilled;) {
            const int delayUs = armKill(150, 150'000);
            import_.start(program(u"rovanactl"_s), {u"import"_s, u"--device"_s, device()});
            const int before = kills_;
            await(&import_, delayUs);
            isKilled = kills_ > before;
            runTool({u"check"_s, u"--device"_s, device()});
            // Each table has its old rows and the file still waits, or all of the file's.
            const QStringList found = rows();
            for (const QString& table :
                 {u"MTM"_s, u"GARAE"_s, u"PUMMOK"_s, u"GARAEDANGA"_s, u"GARAEMAJIN"_s}) {
                const QStringList now = ofTable(found, table);
                const bool isWaiting = QFile::exists(device() + u"/My Documents/"_s + table + u".RVN"_s);
                if (!isWaiting || now != ofTable(empty_, table)) count(now, ofTable(states_[0], table));
            }
            if (HasFailure()) return;
        }
        count(rows(), states_[0]);
    }

    QString planFile() const { return folder_.filePath(u"faults"_s); }
    QString delivered() const { return folder_.filePath(u"delivered"_s); }
    QString loaded() const { return folder_.filePath(u"loaded"_s); }

    test::StorageFaultPlan* plan_ = nullptr;
    QProcess import_;
    QStringList empty_;          ///< Before the import.
    QList<QStringList> states_;  ///< After the import and so many of the changes.
    int calls_ = 0;              ///< To the storage in the whole visit.
    int playUs_ = 0;             ///< How long it takes.
};

TEST_F(StorageTorture, EverySlipIsAsItWasOrAsItIs) {
    int run = 0;
    const auto tell = qScopeGuard([&] { report("storage", run); });
    qsizetype done = std::ssize(kChanges);
    for (; goesOn(kills_, kKills, kFewestKills); ++run) {
        random_.seed(seed_ + unsigned(run));
        if (done == std::ssize(kChanges)) {
            importAll();
            done = 0;
        }
        SCOPED_TRACE(testing::Message()
                     << "run " << run << ", seed " << seed_ + unsigned(run) << ", after change " << done);
        // Two or three changes lie on the way, as far as it goes.
        const int part = int(std::size(kChanges)) / 3;
        const int delayUs = armKill(calls_ / part, playUs_ / part);
        startTerminal(script(done));
        await(&terminal_, delayUs);
        said_ = terminal_.readAll();
        runTool({u"check"_s, u"--device"_s, device()});
        const QStringList found = rows();
        const auto reached = std::find(states_.cbegin() + done, states_.cend(), found);
        if (reached == states_.cend()) {
            count(found, states_[done]);
            QFile log(device() + u"/rovana.log"_s);
            if (log.open(QIODevice::ReadOnly)) std::printf("%s\n", log.readAll().constData());
        } else {
            done = reached - states_.cbegin();
        }
        ASSERT_FALSE(HasFailure()) << said_.constData();
    }
}

}  // namespace
