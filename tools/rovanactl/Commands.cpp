#include <QDate>
#include <QFileInfo>
#include <QStringBuilder>
#include <algorithm>
#include <array>

#include "db/Query.h"
#include "db/Schema.h"
#include "platform/Clock.h"
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

constexpr db::Statement<u"SELECT name FROM sqlite_master WHERE name = '%s'"> kSelectTable;

QString generalHelp() {
    QString help =
        u"Usage: rovanactl COMMAND [options]\n"
        "Makes, fills, reads and checks the device folder of the terminal.\n\nCommands:\n"_s;
    for (const Command* command : kCommands) {
        const QString call = command->name % u' ' % command->arguments;
        help += u"  %1 %2\n"_s.arg(call, -26).arg(command->summary);
    }
    return help +
           u"\nEvery command takes --device DIR, the device folder; without it $ROVANA_DEVICE, else the\n"
           "user's application-data folder is used. \"rovanactl COMMAND --help\" tells the rest.\n"
           "Exit codes: 0 done, 1 failed, 2 wrong usage.\n"_s;
}

const Command* findCommand(QStringView name) {
    const auto found =
        std::ranges::find_if(kCommands, [&](const Command* command) { return command->name == name; });
    return found == kCommands.end() ? nullptr : *found;
}

QString help(const Command& command, const QCommandLineParser& parser) {
    // Of the parser's own text only the options: it names the program by its path and no command.
    const QString all = parser.helpText();
    const QString options = all.sliced(std::max<qsizetype>(0, all.indexOf(u"Options:")));
    const QString call = QString(command.name % u' ' % command.arguments).trimmed();
    return u"Usage: rovanactl %1 [options]\n%2\n%3%4\n%5"_s.arg(
        call, command.summary, command.details, command.details.isEmpty() ? u""_s : u"\n"_s, options);
}

/// The first argument that is neither an option nor the value of --device.
QString commandName(const QStringList& arguments) {
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == u"--device") {
            ++i;
        } else if (!arguments[i].startsWith(u'-')) {
            return arguments[i];
        }
    }
    return {};
}

Outcome runCommand(const Command& command, const QStringList& arguments, QTextStream& in, QTextStream& out,
                   QTextStream& err) {
    QCommandLineParser parser;
    parser.addOptions(
        {{{u"h"_s, u"help"_s}, u"Shows this help."_s}, {u"device"_s, u"The device folder."_s, u"DIR"_s}});
    if (command.addOptions != nullptr) command.addOptions(parser);
    const QString name = command.name.toString();
    const auto wrongUsage = [&](const QString& error) {
        return usageError(u"%1; see \"rovanactl %2 --help\""_s.arg(error, name));
    };
    if (!parser.parse(arguments)) return wrongUsage(parser.errorText());
    if (parser.isSet(u"help"_s)) {
        out << help(command, parser);
        return {};
    }
    const QStringList positional = parser.positionalArguments().mid(1);
    if (positional.size() < command.fewestArguments || positional.size() > command.mostArguments) {
        return wrongUsage(u"\"%1\" takes the arguments \"%2\""_s.arg(name, command.arguments));
    }
    if (parser.isSet(u"device"_s) && parser.value(u"device"_s).isEmpty()) {
        return wrongUsage(u"--device needs a folder"_s);
    }
    platform::device::setFolder(platform::device::choose(parser.value(u"device"_s)));
    return command.run({positional, parser, in, out, err});
}

}  // namespace

Outcome failure(const QString& error) {
    return {kFailure, error};
}

Outcome usageError(const QString& error) {
    return {kUsageError, error};
}

int run(const QStringList& arguments, QTextStream& in, QTextStream& out, QTextStream& err) {
    const QString name = commandName(arguments);
    const auto isAsked = [&](const QString& option) { return arguments.contains(option); };
    if (name == u"help" || (name.isEmpty() && (isAsked(u"--help"_s) || isAsked(u"-h"_s)))) {
        out << generalHelp();
        return kSuccess;
    }
    if (name.isEmpty() && isAsked(u"--version"_s)) {
        out << u"rovanactl "_s << QStringLiteral(ROVANA_VERSION) << u"\n"_s;
        return kSuccess;
    }
    const Command* command = findCommand(name);
    if (command == nullptr) {
        err << (name.isEmpty() ? u"rovanactl: no command was named\n"_s
                               : u"rovanactl: there is no command \"%1\"\n"_s.arg(name))
            << generalHelp();
        return kUsageError;
    }
    Outcome outcome = runCommand(*command, arguments, in, out, err);
    out.flush();
    if (outcome.exitCode == kSuccess && out.status() != QTextStream::Ok) {
        outcome = failure(u"the output could not be written; is its disk full?"_s);
    }
    if (!outcome.error.isEmpty()) err << u"rovanactl: "_s << outcome.error << u"\n"_s;
    err.flush();
    return outcome.exitCode;
}

Outcome requireTable(QStringView table) {
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

std::optional<QString> dateOption(const QCommandLineParser& options, const QString& name) {
    constexpr QStringView kFormat = u"yyyy-MM-dd";
    if (!options.isSet(name)) return platform::clock::now().date().toString(kFormat);
    const QDate date = QDate::fromString(options.value(name), kFormat);
    return date.isValid() ? std::optional(date.toString(kFormat)) : std::nullopt;
}

}  // namespace admin
