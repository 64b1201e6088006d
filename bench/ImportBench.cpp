// Loading a file of contract prices beside the sqlite3 shell's .import of the same rows into the same table
// and index of a fresh database, both with a write-ahead log and a sync at the commit. The same file once
// more, beside the least that it takes to know that.

#include <sodium.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <stdexcept>

#include "Bench.h"
#include "Folder.h"
#include "db/MasterImport.h"
#include "platform/Device.h"
#include "platform/Sqlite.h"
#include "platform/Sync.h"
#include "platform/adoce/DatabaseFile.h"

namespace bench {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRuns = 5;
constexpr int kRunsAgain = 25;  ///< These are short, and wait for the disk.
constexpr int kCustomers = 2000;
constexpr int kProducts = 100;
constexpr int kLines = kCustomers * kProducts;
constexpr const char* kUnit = "ms";

/// Contract prices ordered by customer and product, as the office writes them. The shell takes a "|" after
/// the last field for the start of another one, so its rows go without.
QByteArray contractPrices(bool endsWithSeparator) {
    QByteArray lines;
    for (int customer = 0; customer < kCustomers; ++customer) {
        for (int product = 0; product < kProducts; ++product) {
            const int price = 15000 + (customer * 37 + product * 911) % 90000;
            lines += QByteArray::number(1000 + customer) + '|' + QByteArray::number(1000 + product) + "|5|" +
                     QByteArray::number(price) + '|' + QByteArray::number(price / 10) + '|' +
                     QByteArray::number(price / 20) + '|' + QByteArray::number(price / 200) + '|' +
                     QByteArray::number(price / 7) + "|9000|450";
            lines += endsWithSeparator ? "|\n" : "\n";
        }
    }
    return lines;
}

const db::ImportFile& contractPriceFile() {
    for (const db::ImportFile& file : db::importFiles()) {
        if (file.fileName == u"GARAEDANGA.RVN") return file;
    }
    throw std::runtime_error("no import file of contract prices");
}

/// Throws unless both tables hold the same rows, and as many as the file has lines.
void checkSameRows(const QString& databaseFile, const QString& other) {
    platform::SqliteFile file(databaseFile, platform::SqliteFile::Mode::Existing);
    file.run((u"ATTACH '"_s + other + u"' AS peer"_s).toUtf8());
    const auto counted = file.rows(
        u"SELECT (SELECT count(*) FROM GARAEDANGA), (SELECT count(*) FROM peer.GARAEDANGA), "
        "(SELECT count(*) FROM (SELECT * FROM GARAEDANGA EXCEPT SELECT * FROM peer.GARAEDANGA))"_s);
    const QString lines = QString::number(kLines);
    if (!counted || counted->first() != QStringList{lines, lines, u"0"_s})
        throw std::runtime_error("the two tables differ");
}

double loadWithShell(const QString& databaseFile, const QString& rows) {
    QProcess shell;
    const double time = millisecondsOf([&] {
        shell.start(u"sqlite3"_s, {u"-batch"_s, databaseFile});
        shell.write("PRAGMA journal_mode=WAL;\nPRAGMA synchronous=FULL;\n.separator \"|\" \"\\n\"\n");
        shell.write(u".import %1 GARAEDANGA\n"_s.arg(rows).toUtf8());
        shell.closeWriteChannel();
        shell.waitForFinished(-1);
    });
    if (shell.exitStatus() != QProcess::NormalExit || shell.exitCode() != 0 ||
        !shell.readAllStandardError().isEmpty()) {
        throw std::runtime_error("the sqlite3 shell did not import the rows");
    }
    return time;
}

/// Lets a file arrive. It lies on the disk already: the waits that are measured are those for the notes.
void deliver(const QString& path, const QByteArray& lines) {
    writeFile(path, lines);
    if (!platform::syncToDisk(path)) throw std::runtime_error("the file is not on the disk");
}

/// Milliseconds that loading the contract prices takes, which must end so.
double load(const QByteArray& lines, db::ImportResult::Outcome outcome) {
    const db::ImportFile& file = contractPriceFile();
    deliver(platform::device::path(importPath(file, db::ImportSource::Documents)), lines);
    db::ImportResult result;
    const double time = millisecondsOf([&] {
        result = db::importFile(file, db::ImportSource::Documents, [](int, int) {});
        // The shell's time holds the end of its process, which closes the database as well.
        if (outcome == db::ImportResult::Outcome::Loaded) platform::adoce::DatabaseFile::forgetAll();
    });
    if (result.outcome != outcome || result.loaded != kLines || !result.isDeleted)
        throw std::runtime_error("the file was not loaded");
    return time;
}

/// Milliseconds that it takes to read the file, to compute its digest, to note that and when, and to delete
/// the file, both for good. Without the time the note would be the one that stands there already, and SQLite
/// writes no page that stays the same.
double takeNoteOf(const QByteArray& lines, const QString& path, platform::SqliteFile& notes) {
    deliver(path, lines);
    return millisecondsOf([&] {
        QFile file(path);
        const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        QByteArray digest(crypto_generichash_BYTES, Qt::Uninitialized);
        crypto_generichash(reinterpret_cast<unsigned char*>(digest.data()), size_t(digest.size()),
                           reinterpret_cast<const unsigned char*>(content.constData()),
                           static_cast<unsigned long long>(content.size()), nullptr, 0);
        notes.statement("UPDATE MASTERLOAD SET Digest = ?, LoadedAt = ?")
            .bind(digest.toHex())
            .bind(QDateTime::currentMSecsSinceEpoch())
            .step();
        if (content != lines || !file.remove() || !platform::syncToDisk(QFileInfo(path).path()))
            throw std::runtime_error("the file was not read and deleted");
    });
}

}  // namespace

Result measureImport() {
    const Folder folder;
    const QByteArray lines = contractPrices(true);
    const QString rows = folder.path(u"rows.txt"_s);
    writeFile(rows, contractPrices(false));
    const QString peerDatabase = folder.path(u"peer.db"_s);

    const auto ours = [&] {
        folder.emptyDatabase();
        return load(lines, db::ImportResult::Outcome::Loaded);
    };
    const auto peer = [&] {
        Folder::makeDatabase(peerDatabase);
        return loadWithShell(peerDatabase, rows);
    };
    const Result result = compare(kRuns, kUnit, ours, peer);
    checkSameRows(folder.databaseFile(), peerDatabase);
    return result;
}

Result measureImportAgain() {
    const Folder folder;
    const QByteArray lines = contractPrices(true);
    const double first = load(lines, db::ImportResult::Outcome::Loaded);
    const QString peerDatabase = folder.path(u"peer.db"_s);
    Folder::makeDatabase(peerDatabase);
    platform::SqliteFile notes(peerDatabase, platform::SqliteFile::Mode::Existing);
    notes.run("PRAGMA synchronous=FULL; INSERT INTO MASTERLOAD (Digest) VALUES ('')");
    Result result = compare(
        kRunsAgain, kUnit, [&] { return load(lines, db::ImportResult::Outcome::Unchanged); },
        [&] { return takeNoteOf(lines, folder.path(u"lines.txt"_s), notes); });
    result.note = " of-a-load=" + std::to_string(result.ours / first);
    return result;
}

}  // namespace bench
