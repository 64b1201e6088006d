#include "db/MasterImport.h"

#include <sodium.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QHash>
#include <QStringConverter>
#include <QThread>
#include <array>

#include "db/ImportLines.h"
#include "db/MasterLoads.h"
#include "db/Query.h"
#include "db/Transaction.h"
#include "db/WaitingFile.h"
#include "platform/Clock.h"
#include "platform/Device.h"
#include "platform/Trace.h"

namespace db {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr Statement<u"DELETE IMPORTLOG WHERE Path = '%s'"> kDeleteLedger;

/// The fields of a line as UTF-8. They last until the next line.
class LineFields {
  public:
    explicit LineFields(const ImportFile& file) : file_(file) {}

    /// Null for a line that is not code page 949.
    const std::vector<QByteArrayView>* cut(QByteArrayView line) {
        // Price files are ASCII, whose bytes are UTF-8 already.
        if (QtPrivate::isAscii(QLatin1StringView(line)) && !line.contains('\0')) {
            cutImportLine(file_, line, &fields_);
            return &fields_;
        }
        const std::optional<QString> text = decodeImportLine(line);
        if (!text) return nullptr;
        cutImportLine(file_, *text, &texts_);
        fields_.clear();
        char* end = utf8_.data();
        for (const QStringView field : texts_) {
            char* const begin = end;
            end = encoder_.appendToBuffer(begin, field);
            fields_.emplace_back(begin, end);
        }
        return &fields_;
    }

  private:
    const ImportFile& file_;
    std::vector<QStringView> texts_;
    std::vector<QByteArrayView> fields_;
    QStringEncoder encoder_{QStringEncoder::Utf8, QStringEncoder::Flag::Stateless};
    std::array<char, 3 * kLongestLineBytes> utf8_;  ///< A byte gives at most one unit, and that three bytes.
};

/// What this very file has and another of the same name has not.
struct FileIdentity {
    QString handheldPath;  ///< How the ledger names it: the device folder may move.
    QString digest;
    QString size;
    QString modified;
};

FileIdentity identify(const QString& handheldPath, const WaitingFile& file) {
    const QByteArray& content = file.content();
    std::array<unsigned char, crypto_generichash_BYTES> digest;
    crypto_generichash(digest.data(), digest.size(),
                       reinterpret_cast<const unsigned char*>(content.constData()),
                       static_cast<unsigned long long>(content.size()), nullptr, 0);
    const auto hex = QByteArrayView(reinterpret_cast<const char*>(digest.data()), qsizetype(digest.size()));
    return {handheldPath, QString::fromLatin1(hex.toByteArray().toHex()), QString::number(content.size()),
            QString::number(file.modified())};
}

/// Where the file's rejected lines are kept: beside it, else with the documents.
QStringList placesForRejected(const ImportFile& file, ImportSource source) {
    QStringList places{rejectedPath(file, source)};
    if (source != ImportSource::Documents) places << rejectedPath(file, ImportSource::Documents);
    return places;
}

/// One file on its way into its table.
class Load {
  public:
    Load(const ImportFile& file, ImportSource source, WaitingFile& waiting, ImportResult* result)
        : file_(file),
          source_(source),
          waiting_(waiting),
          identity_(identify(importPath(file, source), waiting)),
          result_(*result) {}

    /// Brings the lines into the table, if they are not there yet.
    ImportResult::Outcome run(const std::function<void(int, int)>& progress);

    /// Deletes the file and takes it out of the ledger.
    bool deleteFile() {
        if (!waiting_.removeForGood()) {
            platform::trace(u"import: %1 is loaded but cannot be deleted for good"_s.arg(waiting_.path()));
            return false;
        }
        // An entry that is back after a loss of power names a file that is gone: nothing waits for the disk.
        Transaction transaction(Survives::ProcessEnd);
        transaction.run(kDeleteLedger(identity_.handheldPath));
        transaction.commit();
        return true;
    }

  private:
    ImportResult::Outcome look(int rows);
    void insertLines(Transaction& transaction, const std::function<void(int, int)>& progress);
    bool keepRejected(Transaction& transaction);

    const ImportFile& file_;
    ImportSource source_;
    WaitingFile& waiting_;
    FileIdentity identity_;
    ImportResult& result_;
    RejectedLines rejected_;
};

/// What became of the file before this run, or NotSaved when nothing did. Whoever loads at the same time has
/// either committed nothing or put the file in the ledger, which it cannot leave during this transaction. The
/// table has that many rows now.
ImportResult::Outcome Load::look(int rows) {
    // The ledger names a file whose lines are in the table but which may still be there. Loading and its
    // entry are one transaction, so a run that was stopped before deleting the file is recognised.
    static constexpr Statement<
        u"SELECT Path FROM IMPORTLOG WHERE Path = '%s' AND Digest = '%s' AND Size = '%s' AND Modified = '%s'">
        kSelectLedger;
    using enum ImportResult::Outcome;
    if (hasRow(kSelectLedger(identity_.handheldPath, identity_.digest, identity_.size, identity_.modified))) {
        platform::trace(u"import: %1 was loaded before"_s.arg(waiting_.path()));
        return AlreadyLoaded;
    }
    if (!waiting_.isUntouched()) return WaitingFile::isAt(waiting_.path()) ? BeingWritten : NotOpened;
    return rows == result_.lines && holdsContent(file_, identity_.digest) ? Unchanged : NotSaved;
}

ImportResult::Outcome Load::run(const std::function<void(int, int)>& progress) {
    static constexpr Statement<
        u"INSERT INTO IMPORTLOG (Path,Digest,Size,Modified,LoadedAt) VALUES ('%s','%s','%s','%s','%s')">
        kInsertLedger;
    using enum ImportResult::Outcome;
    Transaction transaction;
    // A terminal that was not upgraded has no table for what came later: the file stays until it has.
    const std::optional<int> rows = countRows(file_);
    if (!transaction.isAlive() || !rows) return NotSaved;
    const ImportResult::Outcome before = look(*rows);
    if (before != NotSaved && before != Unchanged) return before;
    if (before == Unchanged) {
        result_.loaded = result_.lines;
        if (progress) progress(result_.lines, result_.lines);
    } else {
        if (file_.deleteAll != nullptr) transaction.connection().Execute(file_.deleteAll());
        insertLines(transaction, progress);
    }
    transaction.connection().Execute(kDeleteLedger(identity_.handheldPath));
    transaction.connection().Execute(kInsertLedger(identity_.handheldPath, identity_.digest, identity_.size,
                                                   identity_.modified,
                                                   platform::clock::now().toString(Qt::ISODate)));
    // A file with rejected lines is loaded again, and they are told of again.
    rememberLoad(file_, rejected_.count() == 0 ? identity_.digest : QString(), waiting_.modified(),
                 transaction);
    // What was loaded must be all that the file holds now.
    if (!waiting_.isUntouched()) return BeingWritten;
    if (!transaction.isAlive() || !keepRejected(transaction) || !transaction.commit()) return NotSaved;
    return before == Unchanged ? Unchanged : Loaded;
}

/// Runs the INSERT of every line on the transaction's connection.
void Load::insertLines(Transaction& transaction, const std::function<void(int, int)>& progress) {
    ImportLines reader(waiting_.content());
    LineFields fields(file_);
    RowInsert insert(transaction, file_.insert());
    for (int number = 1; !reader.atEnd() && transaction.isAlive(); ++number) {
        const QByteArrayView line = withoutLineEnd(reader.next());
        const std::vector<QByteArrayView>* const row = fields.cut(line);
        if (row == nullptr) {
            rejected_.add(number, RejectedLine::Reason::NotCodePage949, line);
        } else if (insert.run(*row)) {
            ++result_.loaded;
        } else {
            rejected_.add(number, RejectedLine::Reason::NotAccepted, line);
        }
        if (progress) progress(number, result_.lines);
    }
    result_.rejected = rejected_.count();
    result_.firstRejected = rejected_.first();
}

bool Load::keepRejected(Transaction& transaction) {
    if (rejected_.count() == 0) return true;
    result_.keptIn =
        rejected_.keep(placesForRejected(file_, source_), file_.fileName, identity_.digest, transaction);
    if (result_.keptIn.isEmpty()) return false;
    platform::trace(u"import: %1 lines of %2 are kept in %3"_s.arg(rejected_.count())
                        .arg(waiting_.path(), result_.keptIn));
    return true;
}

}  // namespace

ImportLock::ImportLock(int patienceMs) {
    constexpr int kBetweenTriesMs = 10;
    const QDeadlineTimer deadline(patienceMs);
    while (lock_.emplace(platform::device::path(platform::device::kDocumentsFolder)), isTaken()) {
        if (deadline.hasExpired()) return;
        QThread::msleep(kBetweenTriesMs);
    }
}

QString rejectedPath(const ImportFile& file, ImportSource source) {
    return platform::device::path(importPath(file, source) + u".rejected"_s);
}

std::optional<int> countImportLines(const ImportFile& file, ImportSource source) {
    // The dialog counts them when it opens, and again before it loads.
    struct Counted {
        struct stat status;
        int lines;
    };
    static QHash<QString, Counted> counted;
    const QString path = platform::device::path(importPath(file, source));
    struct stat status = {};
    if (!WaitingFile::isAt(path) || ::stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    const auto known = counted.constFind(path);
    if (known != counted.constEnd() && WaitingFile::isUnchanged(known->status, status)) return known->lines;
    QFile waiting(path);
    if (!waiting.open(QIODevice::ReadOnly)) return std::nullopt;
    const QByteArray content = waiting.readAll();
    if (waiting.error() != QFileDevice::NoError) return std::nullopt;
    return counted.insert(path, {status, ImportLines::count(content)})->lines;
}

std::optional<Shrinkage> findShrinkage(const ImportFile& file, ImportSource source) {
    if (file.deleteAll == nullptr) return std::nullopt;
    const std::optional<int> lines = countImportLines(file, source);
    const std::optional<int> rows = countRows(file);
    if (!lines || !rows || *lines * 2 >= *rows) return std::nullopt;
    return Shrinkage{*rows, *lines};
}

ImportResult importFile(const ImportFile& file, ImportSource source,
                        const std::function<void(int done, int count)>& progress) {
    using enum ImportResult::Outcome;
    ImportResult result;
    WaitingFile waiting(platform::device::path(importPath(file, source)));
    if (waiting.state() == WaitingFile::State::BeingWritten) result.outcome = BeingWritten;
    if (waiting.state() == WaitingFile::State::Read) {
        result.lines = ImportLines::count(waiting.content());
        Load load(file, source, waiting, &result);
        result.outcome = load.run(progress);
        if (result.isInTable()) {
            result.isLastLineCut = endsCut(file, waiting.content());
            result.isDeleted = load.deleteFile();
        } else {
            result.loaded = 0;
        }
    }
    if (result.outcome == NotSaved)
        platform::trace(u"import: %1 could not be saved and stays"_s.arg(waiting.path()));
    if (result.outcome == BeingWritten)
        platform::trace(u"import: another program writes %1, which stays"_s.arg(waiting.path()));
    return result;
}

}  // namespace db
