#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>

#include "db/ImportFile.h"

namespace db {

/// The line buffer holds 1024 bytes, its terminating zero included.
inline constexpr qsizetype kLongestLineBytes = 1023;

/// Walks the lines of an import file as they come through its line buffer: a longer line
/// comes as several.
class ImportLines {
  public:
    explicit ImportLines(QByteArrayView content) : rest_(content) {}

    bool atEnd() const { return rest_.isEmpty(); }
    /// The next line, its end included.
    QByteArrayView next();

    /// Number of lines in the content.
    static int count(QByteArrayView content);

  private:
    QByteArrayView rest_;
};

QByteArrayView withoutLineEnd(QByteArrayView line);

/// The text of a line; nothing when it is not code page 949. A line as long as the buffer may end in the
/// middle of a character, which lies far beyond the length that counts.
std::optional<QString> decodeImportLine(QByteArrayView line);

/// Whether the content ends in the middle of a line: without a line end, and before all its fields.
bool endsCut(const ImportFile& file, QByteArrayView content);

}  // namespace db
