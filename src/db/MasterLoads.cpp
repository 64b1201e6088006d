#include "db/MasterLoads.h"

#include <QDateTime>
#include <algorithm>

#include "db/Query.h"
#include "platform/Clock.h"

namespace db {
namespace {

constexpr qint64 kLongestDays = 7;

QDate dayOf(const QString& milliseconds) {
    return QDateTime::fromMSecsSinceEpoch(milliseconds.toLongLong()).date();
}

}  // namespace

bool holdsContent(const ImportFile& file, const QString& digest) {
    static constexpr Statement<u"SELECT Digest FROM MASTERLOAD WHERE FileName = '%s'"> kSelectDigest;
    if (!file.isOnlyOffices) return false;
    const auto last = firstRow(kSelectDigest(file.fileName));
    return last && last->value(0) == digest;
}

void rememberLoad(const ImportFile& file, const QString& digest, qint64 modified, Transaction& transaction) {
    static constexpr Statement<u"SELECT Newest FROM MASTERLOAD WHERE FileName = '%s'"> kSelectNewest;
    static constexpr Statement<u"DELETE MASTERLOAD WHERE FileName = '%s'"> kDeleteLoad;
    static constexpr Statement<
        u"INSERT INTO MASTERLOAD (FileName,Digest,Modified,Newest,LoadedAt) VALUES "
        u"('%s','%s','%s','%s','%s')">
        kInsertLoad;
    if (file.deleteAll == nullptr) return;
    const auto last = firstRow(kSelectNewest(file.fileName));
    const qint64 newest = std::max(modified, last ? last->value(0).toLongLong() : 0);
    // An older build's database has no such table: there nothing is remembered.
    transaction.run(kDeleteLoad(file.fileName));
    transaction.run(kInsertLoad(file.fileName, digest, QString::number(modified), QString::number(newest),
                                platform::clock::now().toString(Qt::ISODate)));
}

std::optional<int> countRows(const ImportFile& file) {
    const auto row = firstRow(file.countRows());
    return row ? std::optional(row->value(0).toInt()) : std::nullopt;
}

QList<OldData> oldMasterData(QDate today) {
    static constexpr Statement<u"SELECT FileName, Modified, Newest, LoadedAt FROM MASTERLOAD"> kSelectLoads;
    QList<OldData> old;
    forEachRow(kSelectLoads(), [&](CVORecordset& row) {
        const QString name = row.GetFieldString(0);
        const auto file =
            std::ranges::find_if(importFiles(), [&](const auto& each) { return each.fileName == name; });
        if (file == importFiles().end()) return;
        const QDateTime loadedAt = QDateTime::fromString(row.GetFieldString(3), Qt::ISODate);
        const qint64 days = loadedAt.date().daysTo(today);
        if (dayOf(row.GetFieldString(1)) < dayOf(row.GetFieldString(2))) {
            old.append({file->fileName});
        } else if (file->isOnlyOffices && !file->isOptional && days > kLongestDays) {
            old.append({file->fileName, int(days)});
        }
    });
    return old;
}

}  // namespace db
