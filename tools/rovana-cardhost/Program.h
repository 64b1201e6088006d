#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>

namespace cardhost {

inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1;
inline constexpr int kUsageError = 2;

/// Runs the program that `arguments` ask for (its own name first) and returns the exit code. Serving ends
/// with the event loop of the application, which must exist.
int run(const QStringList& arguments, QTextStream& in, QTextStream& out, QTextStream& err);

}  // namespace cardhost
