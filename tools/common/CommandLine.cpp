#include "common/CommandLine.h"

#include <QDate>
#include <QStringBuilder>
#include <algorithm>

#include "platform/Clock.h"

namespace tools {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QStringView kDateFormat = u"yyyy-MM-dd";

QString generalHelp(const Program& program) {
    QString help = u"Usage: %1 COMMAND [options]\n%2\n\nCommands:\n"_s.arg(program.name, program.purpose);
    for (const Command* command : program.commands) {
        const QString call = command->name % u' ' % command->arguments;
        help += u"  %1 %2\n"_s.arg(call, -26).arg(command->summary);
    }
    return help +
           u"\n%1\n\"%2 COMMAND --help\" tells the rest.\nExit codes: 0 done, 1 failed, 2 wrong usage.\n"_s
               .arg(program.optionDetails, program.name);
}

const Command* findCommand(const Program& program, QStringView name) {
    const auto found =
        std::ranges::find_if(program.commands, [&](const Command* command) { return command->name == name; });
    return found == program.commands.end() ? nullptr : *found;
}

QString help(const Program& program, const Command& command, const QCommandLineParser& parser) {
    // Of the parser's own text only the options: it names the program by its path and no command.
    const QString all = parser.helpText();
    const QString options = all.sliced(std::max<qsizetype>(0, all.indexOf(u"Options:")));
    const QString call = QString(command.name % u' ' % command.arguments).trimmed();
    return u"Usage: %1 %2 [options]\n%3\n%4%5\n%6"_s.arg(program.name, call, command.summary, command.details,
                                                         command.details.isEmpty() ? u""_s : u"\n"_s,
                                                         options);
}

/// The first argument that is neither an option nor the value of the program's own.
QString commandName(const Program& program, const QStringList& arguments) {
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == u"--" % program.option) {
            ++i;
        } else if (!arguments[i].startsWith(u'-')) {
            return arguments[i];
        }
    }
    return {};
}

Outcome runCommand(const Program& program, const Command& command, const QStringList& arguments,
                   QTextStream& in, QTextStream& out, QTextStream& err) {
    QCommandLineParser parser;
    const QString option = program.option.toString();
    parser.addOptions({{{u"h"_s, u"help"_s}, u"Shows this help."_s},
                       {option, program.optionHelp.toString(), program.optionArgument.toString()}});
    if (command.addOptions != nullptr) command.addOptions(parser);
    const QString name = command.name.toString();
    const auto wrongUsage = [&](const QString& error) {
        return usageError(u"%1; see \"%2 %3 --help\""_s.arg(error, program.name, name));
    };
    if (!parser.parse(arguments)) return wrongUsage(parser.errorText());
    if (parser.isSet(u"help"_s)) {
        out << help(program, command, parser);
        return {};
    }
    const QStringList positional = parser.positionalArguments().mid(1);
    if (positional.size() < command.fewestArguments || positional.size() > command.mostArguments) {
        return wrongUsage(u"\"%1\" takes the arguments \"%2\""_s.arg(name, command.arguments));
    }
    if (parser.isSet(option) && parser.value(option).isEmpty())
        return wrongUsage(u"--%1 needs a value"_s.arg(option));
    if (const QString error = program.begin(parser.value(option)); !error.isEmpty()) return wrongUsage(error);
    return command.run({positional, parser, in, out, err});
}

}  // namespace

Outcome failure(const QString& error) {
    return {kFailure, error};
}

Outcome usageError(const QString& error) {
    return {kUsageError, error};
}

int run(const Program& program, const QStringList& arguments, QTextStream& in, QTextStream& out,
        QTextStream& err) {
    const QString name = commandName(program, arguments);
    const auto isAsked = [&](const QString& option) { return arguments.contains(option); };
    if (name == u"help" || (name.isEmpty() && (isAsked(u"--help"_s) || isAsked(u"-h"_s)))) {
        out << generalHelp(program);
        return kSuccess;
    }
    if (name.isEmpty() && isAsked(u"--version"_s)) {
        out << program.name << u' ' << QStringLiteral(ROVANA_VERSION) << u"\n"_s;
        return kSuccess;
    }
    const QString prefix = program.name % u": ";
    const Command* command = findCommand(program, name);
    if (command == nullptr) {
        err << prefix
            << (name.isEmpty() ? u"no command was named\n"_s : u"there is no command \"%1\"\n"_s.arg(name))
            << generalHelp(program);
        return kUsageError;
    }
    Outcome outcome = runCommand(program, *command, arguments, in, out, err);
    out.flush();
    if (outcome.exitCode == kSuccess && out.status() != QTextStream::Ok) {
        outcome = failure(u"the output could not be written; is its disk full?"_s);
    }
    if (!outcome.error.isEmpty()) err << prefix << outcome.error << u"\n"_s;
    err.flush();
    return outcome.exitCode;
}

std::optional<QString> dateArgument(const QString& argument) {
    const QDate date = QDate::fromString(argument, kDateFormat);
    return date.isValid() ? std::optional(date.toString(kDateFormat)) : std::nullopt;
}

std::optional<QString> dateOption(const QCommandLineParser& options, const QString& name) {
    return options.isSet(name) ? dateArgument(options.value(name))
                               : platform::clock::now().date().toString(kDateFormat);
}

}  // namespace tools
