#pragma once

#include "common/CommandLine.h"

/// The office's command: makes, fills and reads the database that the terminals send their days to.
namespace office {

using tools::Command;
using tools::failure;
using tools::Invocation;
using tools::Outcome;
using tools::usageError;

extern const Command kInitCommand;
extern const Command kUpgradeCommand;
extern const Command kLoadCommand;
extern const Command kHostListCommand;
extern const Command kEnrolCommand;
extern const Command kStatusCommand;
extern const Command kDayCommand;
extern const Command kBoardCommand;
extern const Command kDemoCommand;

/// Runs the command that `arguments` name (the program's own name first) and returns the exit code. Errors go
/// to `err`, results to `out`.
int run(const QStringList& arguments, QTextStream& in, QTextStream& out, QTextStream& err);

}  // namespace office
