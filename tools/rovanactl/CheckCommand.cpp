#include <fcntl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QStringBuilder>
#include <functional>

#include "books/VisitChecks.h"
#include "db/MasterImport.h"
#include "db/Schema.h"
#include "platform/Clock.h"
#include "platform/Device.h"
#include "platform/Settings.h"
#include "platform/Sqlite.h"
#include "platform/WholeFile.h"
#include "platform/adoce/DatabaseFile.h"
#include "platform/message/SavedValues.h"
#include "rovanactl/Command.h"
#include "rovanactl/DatabaseCheck.h"
#include "rovanactl/DatabaseCopy.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Mends one finding; what went wrong with that, or nothing.
using Repair = std::function<QString()>;

/// Gathers what is wrong, and mends it or prints the way to mend it.
class Findings {
  public:
    Findings(QTextStream& out, bool repairs) : out_(out), repairs_(repairs) {}

    /// `mend` is what a person can do about it; with `repair`, rovanactl itself can.
    void add(const QString& wrong, const QString& mend, const Repair& repair = {}) {
        if (!repairs_ || !repair) {
            out_ << u"wrong: "_s << wrong << u"\n  mend: "_s << mend << u'\n';
            ++count_;
            return;
        }
        const QString error = repair();
        if (error.isEmpty()) {
            out_ << u"mended: "_s << wrong << u'\n';
        } else {
            out_ << u"wrong: "_s << wrong << u"\n  cannot be mended: "_s << error << u'\n';
            ++count_;
        }
    }
    void note(const QString& text) { out_ << u"note: "_s << text << u'\n'; }
    int count() const { return count_; }
    bool repairs() const { return repairs_; }

  private:
    QTextStream& out_;
    bool repairs_;
    int count_ = 0;
};

const QString& repairCommand() {
    static const QString text = u"rovanactl check --repair"_s;
    return text;
}

Repair makeFolder(const QString& path) {
    return [path] { return QDir().mkpath(path) ? QString() : u"it cannot be made"_s; };
}

Repair permit(const QString& path, QFile::Permissions permissions) {
    return [path, permissions] {
        return QFile::setPermissions(path, permissions) ? QString() : u"its rights cannot be changed"_s;
    };
}

constexpr QFile::Permissions kOwnFile = QFile::ReadOwner | QFile::WriteOwner;

const QString& remount() {
    static const QString text =
        u"make it writable, and see the system's log first: a system itself makes a disk that fails read-only"_s;
    return text;
}

/// Whether the file system at the path is mounted so that nobody can write to it.
bool isOnReadOnlyDisk(const QString& path) {
    const QStorageInfo disk(path);
    return disk.isValid() && disk.isReadOnly();
}

bool canWrite(const QString& folder) {
    return ::faccessat(AT_FDCWD, QFile::encodeName(folder).constData(), W_OK, AT_EACCESS) == 0;
}

void checkFolders(Findings& findings) {
    if (isOnReadOnlyDisk(platform::device::folder())) {
        findings.add(u"%1 lies on a disk that is mounted read-only: the terminal can save nothing"_s.arg(
                         platform::device::folder()),
                     remount());
    }
    for (const QStringView folder :
         {platform::device::kDocumentsFolder, platform::device::kStorageCardFolder}) {
        const QString path = platform::device::path(folder);
        if (!QFileInfo(path).isDir()) {
            findings.add(u"the folder %1 is missing"_s.arg(path), repairCommand(), makeFolder(path));
        } else if (isOnReadOnlyDisk(path)) {
            if (!isOnReadOnlyDisk(platform::device::folder()))
                findings.add(u"the folder %1 lies on a disk that is mounted read-only"_s.arg(path),
                             remount());
        } else if (!canWrite(path)) {
            findings.add(u"the folder %1 cannot be written"_s.arg(path), repairCommand(),
                         permit(path, kOwnFile | QFile::ExeOwner));
        }
    }
}

/// The terminal offers the first character of the settings file at login.
void checkSettings(SqliteFile& database, Findings& findings) {
    const QString path = platform::device::path(platform::device::kSettingsFile);
    if (!QFileInfo(path).absoluteDir().exists()) {
        findings.add(u"the folder of %1 is missing"_s.arg(path), repairCommand(),
                     makeFolder(QFileInfo(path).absolutePath()));
        return;
    }
    if (!QFileInfo::exists(path)) {
        findings.note(u"%1 is missing; the terminal offers the user \"A\""_s.arg(path));
        return;
    }
    const std::optional<QByteArray> content = platform::readWholeFile(path);
    if (!content) {
        findings.add(u"%1 cannot be read"_s.arg(path), repairCommand(), permit(path, kOwnFile));
        return;
    }
    const QString user = QString::fromLatin1(content->trimmed().left(1));
    const auto found = database.rows(u"SELECT userID FROM PDAUSER WHERE userID = ?"_s, {user});
    if (!user.isEmpty() && found && found->isEmpty()) {
        findings.add(u"%1 offers the user \"%2\", who is not in PDAUSER"_s.arg(path, user),
                     u"write the id of a user into the file, or add the user with \"rovanactl user\""_s);
    }
}

const QString& renewal() {
    static const QString text =
        u"restore the last backup with \"rovanactl restore FILE\"; without one, move the database away, make "
        u"a new "
        "one with \"rovanactl init\" and have the office send its files again"_s;
    return text;
}

void checkTables(SqliteFile& database, Findings& findings) {
    const int version = tablesVersion(database).value_or(0);
    if (const QString newer = findNewer(database); !newer.isEmpty()) {
        findings.add(u"the database is not this build's"_s, newer);
        return;
    }
    if (version < db::schema::kVersion) {
        findings.note(
            u"the tables have version %1, this build's have %2; \"rovanactl upgrade\" keeps a backup and "
            u"brings "
            "them up"_s.arg(version)
                .arg(db::schema::kVersion));
    }
    for (const Departure& departure : findDepartures(database)) {
        if (departure.repair.isEmpty()) {
            findings.add(departure.text, renewal());
            continue;
        }
        findings.add(departure.text, repairCommand(),
                     [&] { return database.execute(departure.repair) ? QString() : database.errorText(); });
    }
}

/// A slip being written stands in the working tables. Without a terminal that writes one, its rows are what a
/// terminal left that died: one that was not saved is offered at login, the next work in the menu drops them.
void checkWorkingRows(SqliteFile& database, Findings& findings) {
    for (const QString& table : {u"TEMP"_s, u"YTEMP"_s}) {
        const auto rows = database.rows(u"SELECT COUNT(*) FROM "_s + table);
        if (!rows || rows->first().first() == u"0") continue;
        const QString what =
            u"%1 holds %2 rows of a slip that is not saved"_s.arg(table, rows->first().first());
        const auto writer =
            database.rows(u"SELECT UserID FROM UNSAVED WHERE Slip = ? AND Changed = '1'"_s, {table});
        if (writer && !writer->isEmpty()) {
            findings.note(what %
                          u"; the terminal offers them to user %1 at login"_s.arg(writer->first().first()));
            continue;
        }
        if (!findings.repairs()) {
            findings.note(what % u"; the terminal drops them when it starts the next one"_s);
            continue;
        }
        findings.add(what, {}, [&] {
            return database.execute(u"DELETE FROM "_s + table) ? QString() : database.errorText();
        });
    }
}

/// The login has no keyboard and offers one letter.
void checkUsers(SqliteFile& database, Findings& findings) {
    const auto others = database.rows(u"SELECT userID FROM PDAUSER WHERE userID NOT GLOB '[A-Z]'"_s);
    for (const QStringList& row : others.value_or(QList<QStringList>())) {
        findings.add(u"the user \"%1\" cannot log in: the login offers the letters A to Z"_s.arg(row.first()),
                     u"\"rovanactl load PDAUSER FILE.csv\" with a letter for everybody"_s);
    }
}

void checkRows(SqliteFile& database, Findings& findings) {
    const auto count = [&](const QString& table) {
        const auto rows = database.rows(u"SELECT COUNT(*) FROM "_s + table);
        return rows ? rows->first().first().toInt() : -1;
    };
    if (count(u"PDAUSER"_s) == 0) {
        findings.add(u"no user may log in: PDAUSER is empty"_s, u"add one with \"rovanactl user\""_s);
    }
    if (const int rows = count(u"IMPORTREJECT"_s); rows > 0) {
        findings.add(u"IMPORTREJECT holds %1 lines of import files that were not taken"_s.arg(rows),
                     u"have the office send them again, then empty the table"_s);
    }
    if (const int rows = count(u"config"_s); rows >= 0 && rows != 1) {
        findings.add(u"config has %1 rows instead of one"_s.arg(rows),
                     u"\"rovanactl load config FILE.csv\" with one row"_s);
    }
}

/// What a terminal that was told its card host needs to be answered by it.
void checkCardHost(Findings& findings) {
    using namespace platform::message;
    SavedValues values;
    if (readSavedValues(&values) != kDone) return;
    const auto check = [&](Status status, QStringView file, const QString& what, const QString& mend) {
        if (status == kDone) return;
        const QString path = platform::device::path(file);
        findings.add(status == kKeyFileMissing
                         ? u"%1 with %2 is missing: no card can be paid with"_s.arg(path, what)
                         : u"%1 holds no key, but is to hold %2"_s.arg(path, what),
                     status == kKeyFileMissing ? mend : u"delete the file, then "_s + mend);
    };
    PublicKey host;
    check(readHostKey(&host), kHostKeyFile, u"the card host's key"_s,
          u"\"rovanactl card-host\" with the host's address, port and host.pub"_s);
    SigningKey own;
    check(readSigningKey(&own), kSigningKeyFile, u"the terminal's own key"_s,
          u"\"rovanactl card-host\", which makes one and shows how the host enrols it"_s);
}

void checkDeviceSettings(Findings& findings) {
    for (const QString& complaint : platform::readSettings().complaints)
        findings.add(complaint, u"change it in %1/rovana.conf"_s.arg(platform::device::folder()));
}

void checkImportFiles(Findings& findings) {
    for (const db::ImportFile& file : db::importFiles()) {
        const db::ImportSource source = db::findImportFile(file);
        if (const auto lines = db::countImportLines(file, source)) {
            findings.note(
                u"%1 waits for its import with %2 lines"_s.arg(db::importPath(file, source)).arg(*lines));
        }
        for (const db::ImportSource folder : {db::ImportSource::Documents, db::ImportSource::StorageCard}) {
            const QString path = platform::device::path(db::importPath(file, folder));
            if (QFileInfo::exists(path) && source == db::ImportSource::None && !isOnReadOnlyDisk(path)) {
                findings.add(u"%1 cannot be opened for reading and writing"_s.arg(path), repairCommand(),
                             permit(path, kOwnFile));
            }
            if (const QString rejected = db::rejectedPath(file, folder); QFileInfo(rejected).isFile()) {
                findings.add(u"%1 holds lines that were not taken"_s.arg(rejected),
                             u"have the office send them again, then delete the file"_s);
            }
        }
    }
}

/// The visits of the days that are not closed, and of today, whose slips do not agree. A person settles them
/// on the terminal: the database is as it should be.
void checkVisits(Findings& findings) {
    const QString today = platform::clock::now().toString(u"yyyy-MM-dd"_s);
    QStringList days = books::unclosedDays({}, today);
    days << today;
    for (const QString& day : std::as_const(days)) {
        const auto visits = books::visitsOfDay(day, {});
        if (!visits) continue;
        for (const books::CheckedVisit& checked : books::checkVisits(*visits)) {
            const books::Visit& visit = checked.visit;
            for (const books::VisitDifference& difference : checked.differences) {
                const QString detail = books::detailOf(difference);
                findings.note(u"visit %1 %2 %3 %4: %5 %6%7"_s.arg(
                    day, visit.userId, visit.junNo, visit.gName, books::reasonOf(difference.kind),
                    platform::groupThousands(difference.amount),
                    detail.isEmpty() ? QString() : u" (%1)"_s.arg(detail)));
            }
        }
    }
    // A repair asks whether anybody has the database open.
    platform::adoce::DatabaseFile::forgetAll();
}

/// An index can be made anew from its table; a damaged table cannot. The database as it was stays beside.
QString rebuildIndexes(SqliteFile& database, const QString& path, Findings& findings) {
    const CopyResult kept = keepBeside(database, path);
    if (!kept.error.isEmpty()) return kept.error;
    findings.note(u"the database as it was is kept as "_s % kept.kept);
    const bool isRebuilt = database.execute(u"REINDEX"_s);
    const QString damage = isRebuilt ? findDamage(database) : database.errorText();
    return damage.isEmpty() ? QString()
                            : u"it is not an index alone that is damaged (%1); %2"_s.arg(damage, renewal());
}

/// Databases that were being made when their maker was stopped. Every other file beside the database is
/// somebody's copy.
void checkLeftovers(const QString& path, Findings& findings) {
    const QFileInfo database(path);
    const QString name = database.fileName();
    QStringList patterns{name % u".new"_s, name % u".restored"_s, name % u"*.unfinished-??????"_s};
    for (const QString& made : QStringList(patterns)) {
        for (const QStringView suffix : kJournalSuffixes) patterns << QString(made % suffix);
    }
    for (const QFileInfo& left : database.dir().entryInfoList(patterns, QDir::Files)) {
        findings.add(
            u"%1 is left from an init or a restore that was stopped"_s.arg(left.filePath()), repairCommand(),
            [left] { return QFile::remove(left.filePath()) ? QString() : u"it cannot be deleted"_s; });
    }
}

void checkDatabase(Findings& findings) {
    const QString path = platform::device::path(platform::device::kDatabaseFile);
    if (!QFileInfo::exists(path)) {
        findings.add(u"the database %1 is missing"_s.arg(path),
                     u"rovanactl restore FILE with the last backup, or rovanactl init \"%1\""_s.arg(
                         platform::device::folder()));
        return;
    }
    checkLeftovers(path, findings);
    constexpr QFile::Permissions kOthers =
        QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    if (QFileInfo(path).permissions() & kOthers) {
        findings.add(u"others may read the database %1, which holds passwords"_s.arg(path), repairCommand(),
                     permit(path, kOwnFile));
    }
    // SQLite makes a file beside a database even to read it, unless it is told that nobody can change it.
    const bool isFixed = !canWrite(QFileInfo(path).absolutePath());
    const bool hasLog = QFileInfo(path + u"-wal"_s).size() > 0;
    SqliteFile database(path, isFixed && !hasLog ? SqliteFile::Mode::Immutable : SqliteFile::Mode::Existing);
    if (isFixed && !database.rows(u"PRAGMA schema_version"_s)) {
        findings.add(u"the database %1 cannot be examined where nothing can be written: %2"_s.arg(
                         path, database.errorText()),
                     u"see to it that its folder can be written, then check again"_s);
        return;
    }
    if (findings.repairs() && database.lock() == SqliteFile::Lock::InUse) {
        findings.add(u"%1 was opened by another program just now"_s.arg(path), u"close the terminal first"_s);
        return;
    }
    if (const QString damage = findDamage(database); !damage.isEmpty()) {
        const qsizetype before = findings.count();
        findings.add(u"the database %1 is damaged: %2"_s.arg(path, damage),
                     u"%1; where that does not help, %2"_s.arg(repairCommand(), renewal()),
                     [&] { return rebuildIndexes(database, path, findings); });
        if (!findings.repairs() || findings.count() > before) return;
    }
    checkTables(database, findings);
    checkWorkingRows(database, findings);
    checkUsers(database, findings);
    checkRows(database, findings);
    checkSettings(database, findings);
}

/// What forbids to mend the device folder now; empty when nothing does.
QString findObstacle() {
    const QString path = platform::device::path(platform::device::kDatabaseFile);
    if (isOnReadOnlyDisk(platform::device::folder())) {
        return u"%1 lies on a disk that is mounted read-only; %2"_s.arg(platform::device::folder(),
                                                                        remount());
    }
    if (!QFileInfo::exists(path)) return {};
    const bool isInUse = SqliteFile(path, SqliteFile::Mode::Existing).lock() == SqliteFile::Lock::InUse;
    return isInUse ? describeUse(path) : QString();
}

void addCheckOptions(QCommandLineParser& parser) {
    parser.addOption({u"repair"_s, u"Mends what can be mended."_s});
}

Outcome check(const Invocation& call) {
    Findings findings(call.out, call.options.isSet(u"repair"_s));
    if (findings.repairs()) {
        if (const QString obstacle = findObstacle(); !obstacle.isEmpty()) return failure(obstacle);
    }
    checkFolders(findings);
    checkDeviceSettings(findings);
    const int before = findings.count();
    checkDatabase(findings);
    const bool isSound = findings.count() == before;
    checkCardHost(findings);
    checkImportFiles(findings);
    // Where the database is not sound, its rows tell nothing.
    if (isSound) checkVisits(findings);
    if (findings.count() > 0) {
        return failure(u"%1 found wrong in %2"_s.arg(findings.count()).arg(platform::device::folder()));
    }
    call.out << platform::device::folder() << u": nothing wrong\n"_s;
    return {};
}

}  // namespace

constinit const Command kCheckCommand{
    u"check",
    u"",
    u"looks for damage to the database and the device folder",
    u"Prints what is wrong and how to mend it, and exits with 1 when anything is. Changes nothing without\n"
    u"--repair, which rebuilds indexes, makes missing tables, indexes and folders, takes rights back and\n"
    u"removes the rows of a slip that a terminal was writing when it died. It needs the terminal closed.\n"
    u"Visits of today and of days of the last week without a close whose slips and payments do not agree "
    u"are\n"
    u"noted with number, customer, reason and amount.",
    0,
    0,
    addCheckOptions,
    check};

}  // namespace admin
