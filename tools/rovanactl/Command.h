#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <QTextStream>
#include <optional>

/// The administrator's command: makes, fills, reads and checks a device folder without a screen.
namespace admin {

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

extern const Command kInitCommand;
extern const Command kLoadCommand;
extern const Command kUserCommand;
extern const Command kImportCommand;
extern const Command kPriceCommand;
extern const Command kSlipsCommand;
extern const Command kPrintCommand;
extern const Command kTotalsCommand;
extern const Command kJournalCommand;
extern const Command kExportCommand;
extern const Command kCardHostCommand;
extern const Command kSwipeCommand;
extern const Command kDevicesCommand;
extern const Command kPrintTestCommand;
extern const Command kSwipeTestCommand;
extern const Command kBackupCommand;
extern const Command kRestoreCommand;
extern const Command kArchiveCommand;
extern const Command kUpgradeCommand;
extern const Command kCheckCommand;

/// Runs the command that `arguments` name (the program's own name first) and returns the exit code. Errors go
/// to `err`, results to `out`.
int run(const QStringList& arguments, QTextStream& in, QTextStream& out, QTextStream& err);

/// A failure unless the device folder has a database that holds the table.
Outcome requireTable(QStringView table);

/// The date that an option "yyyy-MM-dd" names, today without the option; nothing when it is no date.
std::optional<QString> dateOption(const QCommandLineParser& options, const QString& name);

}  // namespace admin
