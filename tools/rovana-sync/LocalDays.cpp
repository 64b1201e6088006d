#include "rovana-sync/LocalDays.h"

#include "platform/Device.h"

namespace terminal_sync {

using namespace Qt::Literals::StringLiterals;
using books::Document;
using books::DocumentDigests;
using books::DocumentIdentity;
using platform::SqliteFile;

namespace {

/// What one call to the office carries at most, so that neither side holds a large day in memory.
constexpr qsizetype kMostBytes = 256 * 1024;
constexpr qsizetype kMostDocuments = 1000;

constexpr int kPatienceMs = 200;

/// The database, of which is known now whether it can be read.
SqliteFile& looked(SqliteFile& database) {
    database.setPatience(kPatienceMs);
    database.run("SELECT 1 FROM MTM LIMIT 1");
    return database;
}

}  // namespace

LocalDays::LocalDays() try
    : database_(platform::device::path(platform::device::kDatabaseFile), SqliteFile::Mode::ReadOnly),
      reader_(looked(database_)) {
} catch (const platform::SqliteError& error) {
    throw LocalError("the terminal's database: " + std::string(error.what()));
}

void LocalDays::read(const std::function<void()>& work) try {
    database_.run("BEGIN");
    work();
    database_.rewindAll();
    database_.run("COMMIT");
} catch (const platform::SqliteError& error) {
    const std::string why = error.what();
    database_.execute(u"ROLLBACK"_s);
    throw LocalError(why);
}

QMap<QString, DocumentDigests> LocalDays::digests(const QString& first) {
    QStringList days;
    read([&] { days = reader_.days(first); });
    QMap<QString, DocumentDigests> digests;
    for (const QString& date : std::as_const(days)) digests[date] = day(date);
    return digests;
}

QStringList LocalDays::daysBefore(const QString& end) {
    QStringList days;
    read([&] { days = reader_.days(u"0001-01-01"_s); });
    days.removeIf([&](const QString& date) { return date >= end; });
    return days;
}

DocumentDigests LocalDays::day(const QString& date) {
    DocumentDigests digests;
    KeptDay kept;
    const auto hasRoom = [&] { return kept.bytes <= kMostBytes && digests.size() <= kMostDocuments; };
    kept_.remove(date);
    read([&] {
        reader_.forEachDocument(date, [&](const Document& document) {
            digests[document.identity] = document.digest;
            kept.bytes += document.content.size();
            if (hasRoom()) kept.documents << document;
            return true;
        });
    });
    if (hasRoom()) {
        kept_[date] = kept;
        limitKept();
    }
    return digests;
}

void LocalDays::limitKept() {
    qsizetype bytes = 0;
    qsizetype documents = 0;
    for (const KeptDay& each : std::as_const(kept_)) {
        bytes += each.bytes;
        documents += each.documents.size();
    }
    while (bytes > kMostBytes || documents > kMostDocuments) {
        bytes -= kept_.first().bytes;
        documents -= kept_.first().documents.size();
        kept_.erase(kept_.begin());
    }
}

QList<Document> LocalDays::take(const QString& date, QSet<DocumentIdentity>* wanted) {
    QList<Document> taken;
    if (kept_.contains(date)) {
        taken = kept_.take(date).documents;
        taken.removeIf([&](const Document& each) { return !wanted->contains(each.identity); });
        wanted->clear();
        return taken;
    }
    qsizetype bytes = 0;
    bool isThrough = true;
    read([&] {
        reader_.forEachDocument(date, [&](const Document& document) {
            if (!wanted->contains(document.identity)) return true;
            const bool hasRoom = taken.isEmpty() || (bytes + document.content.size() <= kMostBytes &&
                                                     taken.size() < kMostDocuments);
            if (!hasRoom) return isThrough = false;
            bytes += document.content.size();
            wanted->remove(document.identity);
            taken << document;
            return true;
        });
    });
    if (isThrough) wanted->clear();
    return taken;
}

QString LocalDays::firstKept() {
    QString first;
    read([&] {
        if (!database_.hasColumn(u"CONTAINERCARRY", u"Until")) return;
        platform::SqliteStatement until = database_.statement("SELECT MAX(Until) FROM CONTAINERCARRY");
        if (until.step()) first = until.text(0);
    });
    return first;
}

}  // namespace terminal_sync
