#pragma once

#include <QString>

namespace pilot {

/// The lines of both texts, those only in `approved` after "-", those only in `printed` after "+", the others
/// after a blank.
QString lineDiff(const QString& approved, const QString& printed);

/// Replaces a file, in UTF-8, and makes its folder. Returns what went wrong, else an empty text.
QString writeApproved(const QString& file, const QString& text);

/// The content of a file in UTF-8; a null text when it cannot be read.
QString readApproved(const QString& file);

}  // namespace pilot
