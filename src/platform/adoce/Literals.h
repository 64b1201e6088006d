#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>
#include <array>
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

/// Takes statements apart and remembers the last few: a price looks in four tables, over and over.
class StatementParser {
  public:
    /// The statement taken apart, until the next call; what was returned last time must be wiped by then.
    /// Null when a quote is left open or two quoted values stand side by side: the provider knows no escaped
    /// quotes, so such a text is broken.
    ParsedStatement* parse(QStringView sql);

  private:
    std::array<ParsedStatement, 8> remembered_;
    std::size_t last_ = 0;    ///< Where the last one was; the next is looked for behind it first.
    std::size_t oldest_ = 0;  ///< Where the next new one goes.
};

}  // namespace platform::adoce
