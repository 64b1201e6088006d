#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>
#include <QTextStream>

#include "common/CommandLine.h"

/// The administrator's command: makes, fills, reads and checks a device folder without a screen.
namespace admin {

using tools::Command;
using tools::dateOption;
using tools::failure;
using tools::Invocation;
using tools::kFailure;
using tools::kSuccess;
using tools::kUsageError;
using tools::Outcome;
using tools::usageError;

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

}  // namespace admin
