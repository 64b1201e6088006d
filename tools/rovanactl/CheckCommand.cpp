#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringBuilder>

#include "db/MasterImport.h"
#include "db/Schema.h"
#include "platform/Device.h"
#include "rovanactl/Command.h"
#include "rovanactl/SqliteFile.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Gathers what is wrong and prints it with the way to mend it.
class Findings {
  public:
    explicit Findings(QTextStream& out) : out_(out) {}

    void add(const QString& wrong, const QString& mend) {
        out_ << u"wrong: "_s << wrong << u"\n  mend: "_s << mend << u'\n';
        ++count_;
    }
    void note(const QString& text) { out_ << u"note: "_s << text << u'\n'; }
    int count() const { return count_; }

  private:
    QTextStream& out_;
    int count_ = 0;
};

void checkFolders(Findings& findings) {
    for (const QStringView folder :
         {platform::device::kDocumentsFolder, platform::device::kStorageCardFolder}) {
        const QString path = platform::device::path(folder);
        if (!QFileInfo(path).isDir()) {
            findings.add(u"the folder %1 is missing"_s.arg(path), u"mkdir -p \"%1\""_s.arg(path));
        } else if (!QFileInfo(path).isWritable()) {
            findings.add(u"the folder %1 cannot be written"_s.arg(path), u"chmod u+rwx \"%1\""_s.arg(path));
        }
    }
}

/// The terminal offers the first character of the settings file at login.
void checkSettings(SqliteFile& database, Findings& findings) {
    const QString path = platform::device::path(platform::device::kSettingsFile);
    if (!QFileInfo(path).absoluteDir().exists()) {
        findings.add(u"the folder of %1 is missing"_s.arg(path),
                     u"mkdir -p \"%1\""_s.arg(QFileInfo(path).absolutePath()));
        return;
    }
    QFile file(path);
    if (!file.exists()) {
        findings.note(u"%1 is missing; the terminal offers the user \"A\""_s.arg(path));
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        findings.add(u"%1 cannot be read"_s.arg(path), u"chmod u+rw \"%1\""_s.arg(path));
        return;
    }
    const QString user = QString::fromLatin1(file.readAll().trimmed().left(1));
    const auto found = database.rows(u"SELECT userID FROM PDAUSER WHERE userID = ?"_s, {user});
    if (!user.isEmpty() && found && found->isEmpty()) {
        findings.add(u"%1 offers the user \"%2\", who is not in PDAUSER"_s.arg(path, user),
                     u"write the id of a user into the file, or add the user with \"rovanactl user\""_s);
    }
}

QString sqliteCommand(const QString& statement) {
    return u"sqlite3 \"%1\" \"%2\""_s.arg(platform::device::path(platform::device::kDatabaseFile), statement);
}

const QString& renewal() {
    static const QString text =
        u"move the database away, make a new one with \"rovanactl init\" and have the office send its files again"_s;
    return text;
}

void checkTables(SqliteFile& database, Findings& findings) {
    for (const db::schema::Table& table : db::schema::tables()) {
        const auto columns =
            database.rows(u"SELECT name FROM pragma_table_info(?)"_s, {table.name.toString()});
        if (!columns || columns->isEmpty()) {
            findings.add(u"the table %1 is missing"_s.arg(table.name),
                         sqliteCommand(createTableStatement(table.name)));
            continue;
        }
        bool isAsExpected = columns->size() == qsizetype(table.columns.size());
        QStringList expected;
        for (const QStringView column : table.columns) {
            const qsizetype at = expected.size();
            isAsExpected = isAsExpected && column.compare((*columns)[at].first(), Qt::CaseInsensitive) == 0;
            expected << column.toString();
        }
        if (!isAsExpected) {
            findings.add(
                u"the columns of %1 are not %2, in that order"_s.arg(table.name, expected.join(u", "_s)),
                renewal());
        }
    }
}

void checkIndexes(SqliteFile& database, Findings& findings) {
    for (const db::schema::Index& index : db::schema::indexes()) {
        const auto found =
            database.rows(u"SELECT name FROM pragma_index_info(?) ORDER BY seqno"_s, {index.name.toString()});
        QStringList columns;
        if (found) {
            for (const QStringList& row : *found) columns << row.first();
        }
        if (index.columns.compare(columns.join(u", "_s), Qt::CaseInsensitive) == 0) continue;
        const QString drop = columns.isEmpty() ? QString() : u"DROP INDEX %1; "_s.arg(index.name);
        findings.add(u"the index %1 is missing or another; searches are slow"_s.arg(index.name),
                     sqliteCommand(drop % createIndexStatement(index.name)));
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
    if (const int rows = count(u"config"_s); rows >= 0 && rows != 1) {
        findings.add(u"config has %1 rows instead of one"_s.arg(rows),
                     u"\"rovanactl load config FILE.csv\" with one row"_s);
    }
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
            if (QFileInfo::exists(path) && source == db::ImportSource::None) {
                findings.add(u"%1 cannot be opened for reading and writing"_s.arg(path),
                             u"chmod u+rw \"%1\""_s.arg(path));
            }
            if (QFileInfo::exists(path + u".rejected"_s)) {
                findings.add(u"%1.rejected holds lines that were not taken"_s.arg(path),
                             u"have the office send them again, then delete the file"_s);
            }
        }
    }
}

void checkDatabase(Findings& findings) {
    const QString path = platform::device::path(platform::device::kDatabaseFile);
    if (QFileInfo::exists(path + u".new"_s)) {
        findings.add(u"%1.new is left from an init that was stopped"_s.arg(path), u"delete it"_s);
    }
    if (!QFileInfo::exists(path)) {
        findings.add(u"the database %1 is missing"_s.arg(path),
                     u"rovanactl init \"%1\""_s.arg(platform::device::folder()));
        return;
    }
    constexpr QFile::Permissions kOthers =
        QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    if (QFileInfo(path).permissions() & kOthers) {
        findings.add(u"others may read the database %1, which holds passwords"_s.arg(path),
                     u"chmod 600 \"%1\""_s.arg(path));
    }
    SqliteFile database(path, SqliteFile::Mode::Existing);
    const auto integrity = database.rows(u"PRAGMA integrity_check"_s);
    if (!integrity || integrity->isEmpty() || integrity->first().first() != u"ok") {
        const QString fault =
            integrity && !integrity->isEmpty() ? integrity->first().first() : database.errorText();
        findings.add(u"the database %1 is damaged: %2"_s.arg(path, fault.section(u'\n', 0, 0)), renewal());
        return;
    }
    checkTables(database, findings);
    checkIndexes(database, findings);
    checkRows(database, findings);
    checkSettings(database, findings);
}

Outcome check(const Invocation& call) {
    Findings findings(call.out);
    checkFolders(findings);
    checkDatabase(findings);
    checkImportFiles(findings);
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
    u"Prints what is wrong and how to mend it, and exits with 1 when anything is. Changes nothing.",
    0,
    0,
    nullptr,
    check};

}  // namespace admin
