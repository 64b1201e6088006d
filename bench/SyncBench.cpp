// What a visit costs the disk: how often each of its changes waits for it, beside the one time that it has
// to, and how many bytes a slip of ten lines writes from the menu to its saving, beside the same rows in one
// transaction of SQLite's. What is counted are the system calls of this very process.

#include <sys/syscall.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>

#include "Bench.h"
#include "Folder.h"
#include "app/Session.h"
#include "books/CollectionSlip.h"
#include "books/PaymentJournal.h"
#include "books/PrintLog.h"
#include "container/ContainerStore.h"
#include "container/WorkingContainers.h"
#include "platform/Sqlite.h"
#include "print/SlipPapers.h"
#include "sales/SlipLine.h"
#include "sales/SlipStore.h"
#include "sales/WorkingSlip.h"
#include "totals/DayClose.h"

namespace {

int syncs = 0;

}  // namespace

// The program's own definitions come before those of the C library.
extern "C" int fdatasync(int descriptor) {
    ++syncs;
    return int(::syscall(SYS_fdatasync, descriptor));
}
extern "C" int fsync(int descriptor) {
    ++syncs;
    return int(::syscall(SYS_fsync, descriptor));
}

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kLines = 10;
constexpr int kSlips = 100;
const QString kDay = u"2024-12-30"_s;
const QString kNumber = u"5001"_s;
const QString kPayment = u"0123456789abcdef0123456789abcdef"_s;

void check(bool isDone) {
    if (!isDone) throw std::runtime_error("the slip was not written");
}

void writeSlip(const QString& number) {
    app::resetSession();
    check(sales::openSlip(u"A", kDay, number).has_value());
    for (int i = 0; i < kLines; ++i) {
        sales::SlipLine line;
        line.DDate = kDay;
        line.GCode = u"C001"_s;
        line.JunNo = number;
        line.PCode = u"P%1"_s.arg(i);
        line.Box = u"3"_s;
        check(sales::insertLine(line));
    }
    check(sales::saveSlip(u"A", kDay, number) == sales::SaveOutcome::Saved);
}

books::CollectionSlip collection() {
    books::CollectionSlip slip;
    slip.DDate = kDay;
    slip.GCode = u"C001"_s;
    slip.JunNo = kNumber;
    slip.UserID = u"A"_s;
    slip.UnderMoney = platform::Won(1000);
    return slip;
}

void notePayment() {
    books::JournalPayment payment;
    payment.number = kPayment;
    payment.slip = collection();
    check(books::notePayment(payment));
}

void writeContainers() {
    check(container::reloadSlip(u"A", kDay, kNumber));
    container::ContainerLine line;
    line.DDate = kDay;
    line.GCode = u"C001"_s;
    line.JunNo = kNumber;
    line.PCode = u"P1"_s;
    line.setCounts({.bottles = 3, .emptyCrates = 1, .filledCrates = 2});
    check(container::insertLine(line));
    check(container::saveSlip(u"A", kDay, kNumber, u"C001") == container::SaveOutcome::Saved);
}

/// All papers, on a device without a printer: what goes to one waits in a folder of its own.
void notePapers() {
    const QList<books::Paper> printed =
        print::SlipPapers(kDay, kNumber, u"A").print(books::kPapers, books::Copy::Seller);
    check(printed.size() == std::ssize(books::kPapers));
}

/// What is changed on the way of a visit, in its order.
constexpr std::pair<const char*, void (*)()> kChanges[] = {
    {"slip", [] { writeSlip(kNumber); }},
    {"containers", writeContainers},
    {"collection", [] { check(books::saveCollection(collection())); }},
    {"payment", notePayment},
    {"approval", [] { check(books::approvePayment(kPayment, u"000000000001").has_value()); }},
    {"papers", notePapers},
    {"close", [] { check(totals::closeDay(kDay, u"A", platform::Won(0)).has_value()); }},
    {"deletion", [] { check(sales::deleteSlip(kDay, kNumber, true, u"A")); }},
};

/// Bytes that this process has given to the system to write.
double bytesWritten() {
    QFile counts(u"/proc/self/io"_s);
    if (!counts.open(QIODevice::ReadOnly)) throw std::runtime_error("no /proc/self/io");
    for (const QByteArray& line : counts.readAll().split('\n')) {
        if (line.startsWith("wchar: ")) return line.mid(7).toDouble();
    }
    throw std::runtime_error("/proc/self/io does not tell what was written");
}

/// Bytes that each of many slips writes, what the log's way into the database takes included.
double bytesOfASlip(const std::function<void(const QString&)>& write) {
    const double before = bytesWritten();
    for (int i = 0; i < kSlips; ++i) write(QString::number(5001 + i));
    return (bytesWritten() - before) / kSlips;
}

}  // namespace

Result measureSyncs() {
    const Folder folder;
    writeSlip(kNumber);
    int most = 0;
    std::string note;
    for (const auto& [name, change] : kChanges) {
        syncs = 0;
        change();
        if (syncs == 0) throw std::runtime_error(std::string(name) + " does not wait for the disk");
        most = std::max(most, syncs);
        note += std::string(note.empty() ? " " : ",") + name + "=" + std::to_string(syncs);
    }
    return {.ours = double(most), .peer = 1, .note = note};
}

Result measureBytes() {
    const Folder folder;
    const double ours = bytesOfASlip(writeSlip);
    const QString peerDatabase = folder.path(u"peer.db"_s);
    Folder::makeDatabase(peerDatabase);
    platform::SqliteFile file(peerDatabase, platform::SqliteFile::Mode::Existing);
    const double peer = bytesOfASlip([&](const QString& number) {
        platform::SqliteTransaction transaction(file);
        auto line = file.statement(
            "INSERT INTO MTM (DDate,GCode,JunNo,PCode,Box,UserID,DTime) VALUES "
            "(?,'C001',?,?,'3','A','10:30')");
        for (int i = 0; i < kLines; ++i) {
            line.rewind();
            line.bind(kDay).bind(number).bind(u"P%1"_s.arg(i)).step();
        }
        transaction.commit();
    });
    const auto rows = [](const QString& databaseFile) {
        return platform::SqliteFile(databaseFile, platform::SqliteFile::Mode::Existing)
            .rows(u"SELECT JunNo, PCode, Box FROM MTM ORDER BY JunNo, PCode"_s);
    };
    if (rows(peerDatabase) != rows(folder.databaseFile())) throw std::runtime_error("the slips differ");
    return {.ours = ours / 1024, .peer = peer / 1024, .unit = "KiB"};
}

}  // namespace bench
