#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <QTextStream>
#include <optional>
#include <span>

/// A program of commands, such as "rovanactl init".
namespace tools {

inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1;
inline constexpr int kUsageError = 2;

/// How a command ended: the exit code and, unless that is 0, what is wrong and what to do.
struct Outcome {
    int exitCode = kSuccess;
    QString error;
};

Outcome failure(const QString& error);
Outcome usageError(const QString& error);

/// One call of a command. `arguments` are those after the command's name, their number already checked.
struct Invocation {
    const QStringList& arguments;
    const QCommandLineParser& options;
    QTextStream& in;
    QTextStream& out;
    QTextStream& err;
};

struct Command {
    QStringView name;
    QStringView arguments;  ///< As the help shows them, for example "TABLE FILE.csv".
    QStringView summary;
    QStringView details;  ///< Further lines of the help.
    int fewestArguments;
    int mostArguments;
    void (*addOptions)(QCommandLineParser& parser);  ///< Null for a command without options of its own.
    Outcome (*run)(const Invocation& call);
};

/// The program: its name, what it does in a line or two, its commands in the order of the help, and the
/// option that each of them takes.
struct Program {
    QStringView name;
    QStringView purpose;
    std::span<const Command* const> commands;
    QStringView option;  ///< For example "device"; it needs a value.
    QStringView optionArgument;
    QStringView optionHelp;
    QStringView optionDetails;  ///< For the general help.
    /// Takes the option's value, empty without the option, and returns what is wrong with it, empty when
    /// nothing is.
    QString (*begin)(const QString& value);
};

/// Runs the command that `arguments` name (the program's own name first) and returns the exit code. Errors go
/// to `err`, results to `out`.
int run(const Program& program, const QStringList& arguments, QTextStream& in, QTextStream& out,
        QTextStream& err);

/// The date that an argument "yyyy-MM-dd" names; nothing when it is no date.
std::optional<QString> dateArgument(const QString& argument);

/// The date that an option "yyyy-MM-dd" names, today without the option; nothing when it is no date.
std::optional<QString> dateOption(const QCommandLineParser& options, const QString& name);

}  // namespace tools
