#pragma once

#include <QStringList>
#include <QTextStream>

namespace terminal_sync {

/// Runs `rovana-sync` with these arguments (the program's name first) and returns the exit code: 0 done, 1
/// failed, 2 wrong usage. With --watch it does not return.
int run(const QStringList& arguments, QTextStream& out, QTextStream& err);

}  // namespace terminal_sync
