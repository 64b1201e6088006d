#include "db/MasterImport.h"

#include <sodium.h>

#include <QFile>
#include <QFileInfo>
#include <array>

#include "db/Query.h"
#include "db/Transaction.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/Sync.h"
#include "platform/Trace.h"
#include "platform/WholeFile.h"

namespace db {
namespace {

using namespace Qt::Literals::StringLiterals;

/// The line buffer holds 1024 bytes, its terminating zero included.
constexpr qsizetype kLongestLineBytes = 1023;

// The ledger names a file whose lines are in the table but which may still be there. Loading and its entry
// are one transaction, so a run that was stopped before deleting the file is recognised.
constexpr Statement<
    u"SELECT Path FROM IMPORTLOG WHERE Path = '%s' AND Digest = '%s' AND Size = '%s' AND Modified = '%s'">
    kSelectLedger;
constexpr Statement<
    u"INSERT INTO IMPORTLOG (Path,Digest,Size,Modified,LoadedAt) VALUES ('%s','%s','%s','%s','%s')">
    kInsertLedger;
constexpr Statement<u"DELETE IMPORTLOG WHERE Path = '%s'"> kDeleteLedger;

/// Walks the lines of a file as they come through the line buffer, line ends included.
class LineReader {
  public:
    explicit LineReader(QByteArrayView content) : rest_(content) {}

    bool atEnd() const { return rest_.isEmpty(); }

    QByteArrayView next() {
        const QByteArrayView buffer = rest_.first(std::min(rest_.size(), kLongestLineBytes));
        const qsizetype lineEnd = buffer.indexOf('\n');
        const QByteArrayView line = lineEnd < 0 ? buffer : buffer.first(lineEnd + 1);
        rest_ = rest_.sliced(line.size());
        return line;
    }

  private:
    QByteArrayView rest_;
};

QByteArrayView withoutLineEnd(QByteArrayView line) {
    if (line.endsWith('\n')) line.chop(1);
    if (line.endsWith('\r')) line.chop(1);
    return line;
}

/// The text of a line; nothing when it is not code page 949. A line as long as the buffer may end in the
/// middle of a character, which lies far beyond the length that counts.
std::optional<QString> decodeLine(QByteArrayView line) {
    std::optional<QString> text = platform::codepage::decode(line);
    if (!text && line.size() == kLongestLineBytes) text = platform::codepage::decode(line.chopped(1));
    return text;
}

int countLines(QByteArrayView content) {
    LineReader reader(content);
    int lines = 0;
    for (; !reader.atEnd(); ++lines) reader.next();
    return lines;
}

std::optional<QByteArray> readFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)) return std::nullopt;
    QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError) return std::nullopt;
    return content;
}

/// What tells this very file from another of the same name.
struct FileIdentity {
    QString handheldPath;  ///< How the ledger names it: the device folder may move.
    QString path;
    QString digest;
    QString size;
    QString modified;
};

FileIdentity identify(const QString& handheldPath, const QByteArray& content) {
    const QString path = platform::device::path(handheldPath);
    std::array<unsigned char, crypto_generichash_BYTES> digest;
    crypto_generichash(digest.data(), digest.size(),
                       reinterpret_cast<const unsigned char*>(content.constData()),
                       static_cast<unsigned long long>(content.size()), nullptr, 0);
    const auto hex = QByteArrayView(reinterpret_cast<const char*>(digest.data()), qsizetype(digest.size()));
    return {handheldPath, path, QString::fromLatin1(hex.toByteArray().toHex()),
            QString::number(content.size()),
            QString::number(QFileInfo(path).lastModified().toMSecsSinceEpoch())};
}

/// Lines that became no row, kept beside the file so that nothing is lost.
class RejectedLines {
  public:
    void add(int number, const char* reason, QByteArrayView line) {
        lines_ += QByteArray::number(number) + '\t' + reason + '\t' + line.toByteArray() + '\n';
        ++count_;
    }
    int count() const { return count_; }

    /// Adds the lines to NAME.RVN.rejected under a heading that names the file's content. A batch of the same
    /// content, left by a run that was stopped, is replaced. False when the file cannot be written.
    bool save(const FileIdentity& file) const {
        const QString path = file.path + u".rejected"_s;
        const QByteArray heading = "# " + file.digest.toLatin1();
        QByteArray kept;
        QFile old(path);
        if (old.open(QIODevice::ReadOnly)) kept = withoutBatch(old.readAll(), heading);
        const QByteArray time = platform::clock::now().toString(Qt::ISODate).toLatin1();
        return platform::writeWholeFile(path, kept + heading + ' ' + time + '\n' + lines_);
    }

  private:
    static QByteArray withoutBatch(const QByteArray& content, const QByteArray& heading) {
        const qsizetype begin = content.startsWith(heading) ? 0 : content.indexOf('\n' + heading) + 1;
        if (begin == 0 && !content.startsWith(heading)) return content;
        const qsizetype next = content.indexOf("\n# ", begin);
        return content.first(begin) + (next < 0 ? QByteArray() : content.sliced(next + 1));
    }

    QByteArray lines_;
    int count_ = 0;
};

/// Deletes the file and waits until the folder on disk knows it, so that a loaded file cannot come back after
/// a loss of power. False when it may.
bool deleteForGood(const QString& path) {
    return QFile::remove(path) && platform::syncToDisk(QFileInfo(path).absolutePath());
}

bool deleteLoadedFile(const FileIdentity& file) {
    if (!deleteForGood(file.path)) {
        platform::trace(u"import: %1 is loaded but cannot be deleted for good"_s.arg(file.path));
        return false;
    }
    execute(kDeleteLedger(file.handheldPath));
    return true;
}

/// Runs the INSERT of every line on the transaction's connection.
void insertLines(const ImportFile& file, const QByteArray& content, Transaction& transaction,
                 ImportResult* result, RejectedLines* rejected,
                 const std::function<void(int, int)>& progress) {
    LineReader reader(content);
    std::vector<QStringView> fields;
    for (int number = 1; !reader.atEnd() && transaction.isAlive(); ++number) {
        const QByteArrayView line = withoutLineEnd(reader.next());
        const std::optional<QString> text = decodeLine(line);
        if (!text) {
            rejected->add(number, "not code page 949", line);
        } else {
            cutImportLine(file, *text, &fields);
            CVORecordset insert(transaction.connection());
            if (insert.Open(file.insert(fields), kForwardOnly, kReadOnly)) {
                ++result->loaded;
            } else {
                rejected->add(number, "not accepted by the database", line);
            }
        }
        if (progress) progress(number, result->lines);
    }
    result->rejected = rejected->count();
}

}  // namespace

std::optional<int> countImportLines(const ImportFile& file, ImportSource source) {
    const std::optional<QByteArray> content = readFile(platform::device::path(importPath(file, source)));
    return content ? std::optional(countLines(*content)) : std::nullopt;
}

ImportResult importFile(const ImportFile& file, ImportSource source,
                        const std::function<void(int done, int count)>& progress) {
    ImportResult result;
    const QString path = platform::device::path(importPath(file, source));
    const std::optional<QByteArray> content = readFile(path);
    if (!content) return result;
    result.lines = countLines(*content);

    const FileIdentity identity = identify(importPath(file, source), *content);
    if (hasRow(kSelectLedger(identity.handheldPath, identity.digest, identity.size, identity.modified))) {
        platform::trace(u"import: %1 was loaded before"_s.arg(path));
        result.outcome = ImportResult::Outcome::AlreadyLoaded;
        result.isDeleted = deleteLoadedFile(identity);
        return result;
    }

    RejectedLines rejected;
    Transaction transaction;
    if (file.deleteAll != nullptr) transaction.connection().Execute(file.deleteAll());
    insertLines(file, *content, transaction, &result, &rejected, progress);
    transaction.connection().Execute(kDeleteLedger(identity.handheldPath));
    transaction.connection().Execute(kInsertLedger(identity.handheldPath, identity.digest, identity.size,
                                                   identity.modified,
                                                   platform::clock::now().toString(Qt::ISODate)));
    const bool isKeptAside = transaction.isAlive() && (rejected.count() == 0 || rejected.save(identity));
    if (!isKeptAside || !transaction.commit()) {
        platform::trace(u"import: %1 could not be saved and stays"_s.arg(path));
        result.outcome = ImportResult::Outcome::NotSaved;
        result.loaded = 0;
        return result;
    }
    if (rejected.count() > 0) {
        platform::trace(u"import: %1 lines of %2 are kept in %2.rejected"_s.arg(rejected.count()).arg(path));
    }
    result.outcome = ImportResult::Outcome::Loaded;
    result.isDeleted = deleteLoadedFile(identity);
    return result;
}

}  // namespace db
