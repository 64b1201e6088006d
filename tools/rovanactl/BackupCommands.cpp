#include <QDir>
#include <QFileInfo>

#include "platform/Device.h"
#include "rovanactl/Command.h"
#include "rovanactl/DatabaseCopy.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

QString database() {
    return platform::device::path(platform::device::kDatabaseFile);
}

void addBackupOptions(QCommandLineParser& parser) {
    parser.addOption({u"force"_s, u"Replaces FILE if it is there."_s});
}

Outcome backup(const Invocation& call) {
    if (!QFileInfo::exists(database())) {
        return failure(u"there is no database %1; name the device folder with --device"_s.arg(database()));
    }
    const QString& file = call.arguments[0];
    const CopyResult result = backUpDatabase(database(), file, call.options.isSet(u"force"_s));
    if (!result.error.isEmpty()) return failure(result.error);
    call.out << u"backed up to %1, %2 KB, examined\n"_s.arg(file).arg(QFileInfo(file).size() / 1024);
    return {};
}

Outcome restore(const Invocation& call) {
    const QString folder = platform::device::path(platform::device::kDocumentsFolder);
    if (!QDir(folder).exists()) {
        return failure(
            u"there is no folder %1; make the device folder with \"rovanactl init\""_s.arg(folder));
    }
    const CopyResult result = restoreDatabase(call.arguments[0], database());
    if (!result.kept.isEmpty()) call.out << u"the replaced database is kept as "_s << result.kept << u'\n';
    if (!result.error.isEmpty()) return failure(result.error);
    call.out << u"restored from "_s << call.arguments[0] << u'\n';
    return {};
}

}  // namespace

constinit const Command kBackupCommand{
    u"backup",
    u"FILE",
    u"copies the database into one file",
    u"The terminal may run meanwhile. FILE is examined, and is there whole or not at all. Only its owner\n"
    u"may read it. It holds passwords and customers: keep it where nobody else comes.",
    1,
    1,
    addBackupOptions,
    backup};

constinit const Command kRestoreCommand{
    u"restore",
    u"FILE",
    u"puts a backup in the place of the database",
    u"FILE is examined first. The database that is replaced stays beside, with the time in its name.\n"
    u"Refused while a terminal has the database open. Slips written since the backup are only in the\n"
    u"replaced database.",
    1,
    1,
    nullptr,
    restore};

}  // namespace admin
