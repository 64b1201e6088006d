#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>
#include <vector>

namespace platform::adoce {

/// A statement text taken apart: the text with "?" in place of every quoted value, and the values.
struct ParsedStatement {
    QByteArray text;        ///< UTF-8.
    QByteArray values;      ///< The values one after another, UTF-8.
    std::vector<int> ends;  ///< Where in `values` each one ends, in bytes.

    /// The pieces around the values, the quotes with them, and where each one ends. A statement is mostly
    /// followed by the same one with other values, and comparing these is quicker than parsing again.
    QString pieces;
    std::vector<int> pieceEnds;
};

/// Takes `sql` apart into `parsed`, reusing what it holds. False when a quote is left open or two quoted
/// values stand side by side: the provider knows no escaped quotes, so such a text is broken.
bool parseStatement(QStringView sql, ParsedStatement* parsed);

}  // namespace platform::adoce
