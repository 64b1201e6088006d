#include "rovanactl/DeviceFolder.h"

#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "db/ImportFile.h"
#include "db/Schema.h"
#include "platform/Device.h"
#include "platform/Sqlite.h"
#include "platform/Sync.h"
#include "platform/WholeFile.h"
#include "rovanactl/DeliveredTable.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;
using platform::SqliteFile;

/// Keeps what is made while it lives from everyone but the owner: the database holds passwords.
class OwnerOnly {
  public:
    OwnerOnly() : before_(::umask(077)) {}
    ~OwnerOnly() { ::umask(before_); }
    Q_DISABLE_COPY_MOVE(OwnerOnly)

  private:
    mode_t before_;
};

/// A row of a delivered table.
struct Row {
    QStringView table;
    QStringList values;
};

/// What a device without invented data needs to be logged in to: one user and the classes of the law.
QList<Row> essentialRows() {
    QList<Row> rows{{u"PDAUSER", {u"A"_s, u"1111"_s, u"사용자"_s, u"1"_s, {}, {}, u"N"_s, {}, {}, {}}},
                    {u"config", QStringList(10, u""_s)}};
    for (const demo::LiquorClass& liquorClass : demo::liquorClasses()) {
        rows.append({u"JGUBUN", {liquorClass.code.toString(), liquorClass.name.toString()}});
    }
    return rows;
}

QList<Row> demoRows(const demo::Data& data) {
    QList<Row> rows;
    for (const Row& row : essentialRows()) {
        if (row.table == u"JGUBUN") rows.append(row);
    }
    for (const QStringList& user : demo::users()) rows.append({u"PDAUSER", user});
    rows.append({u"config", demo::distributor()});
    for (const QStringList& product : demo::frequentProducts(data)) rows.append({u"MPUMMOK", product});
    return rows;
}

/// Makes the database at `path`, which must not exist.
QString createDatabase(const QString& path, const QList<Row>& rows) {
    SqliteFile file(path, SqliteFile::Mode::Create);
    const auto fault = [&] { return u"%1 cannot be made: %2"_s.arg(path, file.errorText()); };
    if (!file.isOpen()) return fault();
    QString script = u"PRAGMA encoding='UTF-8'; PRAGMA synchronous=FULL; BEGIN;"_s;
    script += db::schema::createStatements() + u"PRAGMA user_version=%1;"_s.arg(db::schema::kVersion);
    if (!file.execute(script)) return fault();
    for (const Row& row : rows) {
        const QString places = QStringList(row.values.size(), u"?"_s).join(u',');
        if (!file.rows(u"INSERT INTO %1 VALUES (%2)"_s.arg(row.table, places), row.values)) return fault();
    }
    return file.execute(u"COMMIT"_s) ? QString() : fault();
}

QString writeFile(const QString& path, const QByteArray& content) {
    QString error;
    const bool isWritten = platform::writeWholeFile(path, content, &error);
    return isWritten ? QString() : u"%1 cannot be written: %2"_s.arg(path, error);
}

QString writeImportFiles(const demo::Data& data) {
    for (const db::ImportFile& file : db::importFiles()) {
        if (file.isOptional) continue;
        const std::optional<QByteArray> content = demo::importFileContent(data, file);
        if (!content) return u"the invented rows of %1 do not fit its lines"_s.arg(file.fileName);
        const QString path = platform::device::path(db::importPath(file, db::ImportSource::Documents));
        if (const QString error = writeFile(path, *content); !error.isEmpty()) return error;
    }
    return {};
}

/// The first import file that waits already; it may hold somebody's orders.
QString findWaitingFile() {
    for (const db::ImportFile& file : db::importFiles()) {
        const db::ImportSource source = db::findImportFile(file);
        if (source != db::ImportSource::None) return platform::device::path(db::importPath(file, source));
    }
    return {};
}

}  // namespace

QString createDevice(const std::optional<demo::Options>& demo) {
    const OwnerOnly ownerOnly;
    const QString database = platform::device::path(platform::device::kDatabaseFile);
    const QString unfinished = database + u".new"_s;
    if (QFileInfo::exists(database)) {
        return u"%1 is there already and is not replaced; choose another folder, or move it away"_s.arg(
            database);
    }
    // An unfinished database means that a run was stopped here, and the import files are that run's.
    if (demo && !QFileInfo::exists(unfinished)) {
        if (const QString waiting = findWaitingFile(); !waiting.isEmpty()) {
            return u"%1 waits for its import and is not replaced; choose another folder, or move it away"_s
                .arg(waiting);
        }
    }
    for (const QStringView folder :
         {platform::device::kDocumentsFolder, platform::device::kStorageCardFolder}) {
        if (!platform::makeFolder(platform::device::path(folder))) {
            return u"the folder %1 cannot be made"_s.arg(platform::device::path(folder));
        }
    }
    const QString settings = platform::device::path(platform::device::kSettingsFile);
    if (!platform::makeFolder(QFileInfo(settings).absolutePath())) {
        return u"the folder of %1 cannot be made"_s.arg(settings);
    }
    for (const QString& suffix : {u""_s, u"-journal"_s, u"-wal"_s, u"-shm"_s}) {
        QFile::remove(unfinished + suffix);
    }

    const std::optional<demo::Data> data = demo ? std::optional(demo::invent(*demo)) : std::nullopt;
    QString error = createDatabase(unfinished, data ? demoRows(*data) : essentialRows());
    if (error.isEmpty() && data) error = writeImportFiles(*data);
    if (error.isEmpty() && !QFileInfo::exists(settings)) error = writeFile(settings, "A\r\n");
    if (error.isEmpty() && !QFile::rename(unfinished, database)) {
        error = u"%1 cannot be renamed to %2"_s.arg(unfinished, database);
    }
    if (error.isEmpty() && !platform::syncToDisk(QFileInfo(database).absolutePath()))
        error = u"%1 is there, but its folder cannot be put on the disk"_s.arg(database);
    return error;
}

}  // namespace admin
