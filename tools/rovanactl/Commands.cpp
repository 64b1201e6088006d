#include <QFileInfo>
#include <array>

#include "db/Query.h"
#include "db/Schema.h"
#include "platform/Device.h"
#include "rovanactl/Command.h"

namespace admin {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::array kCommands{&kInitCommand,    &kLoadCommand,      &kUserCommand,      &kSwipeCommand,
                               &kDevicesCommand, &kPrintTestCommand, &kSwipeTestCommand, &kImportCommand,
                               &kPriceCommand,   &kSlipsCommand,     &kPrintCommand,     &kTotalsCommand,
                               &kJournalCommand, &kExportCommand,    &kCardHostCommand,  &kBackupCommand,
                               &kRestoreCommand, &kArchiveCommand,   &kUpgradeCommand,   &kCheckCommand};

constexpr tools::Program kProgram{
    u"rovanactl",
    u"Makes, fills, reads and checks the device folder of the terminal.",
    kCommands,
    u"device",
    u"DIR",
    u"The device folder.",
    u"Every command takes --device DIR, the device folder; without it $ROVANA_DEVICE, else the\n"
    u"user's application-data folder is used.",
    [](const QString& device) {
        platform::device::setFolder(platform::device::choose(device));
        return QString();
    }};

}  // namespace

int run(const QStringList& arguments, QTextStream& in, QTextStream& out, QTextStream& err) {
    return tools::run(kProgram, arguments, in, out, err);
}

Outcome requireTable(QStringView table) {
    static constexpr db::Statement<u"SELECT name FROM sqlite_master WHERE name = '%s'"> kSelectTable;
    const QString path = platform::device::path(platform::device::kDatabaseFile);
    if (!QFileInfo::exists(path)) {
        return failure(
            u"there is no database %1; name the device folder with --device, or make one with \"rovanactl init\""_s
                .arg(path));
    }
    if (!db::hasRow(kSelectTable(db::schema::findTable(table)->name))) {
        return failure(u"the database %1 has no readable table %2; \"rovanactl check\" tells more"_s.arg(
            path, table.toString()));
    }
    return {};
}

}  // namespace admin
