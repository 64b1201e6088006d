#include "db/ImportLines.h"

#include <algorithm>

#include "platform/CodePage.h"

namespace db {

QByteArrayView ImportLines::next() {
    const QByteArrayView buffer = rest_.first(std::min(rest_.size(), kLongestLineBytes));
    const qsizetype lineEnd = buffer.indexOf('\n');
    const QByteArrayView line = lineEnd < 0 ? buffer : buffer.first(lineEnd + 1);
    rest_ = rest_.sliced(line.size());
    return line;
}

int ImportLines::count(QByteArrayView content) {
    ImportLines lines(content);
    int count = 0;
    for (; !lines.atEnd(); ++count) lines.next();
    return count;
}

QByteArrayView withoutLineEnd(QByteArrayView line) {
    if (line.endsWith('\n')) line.chop(1);
    if (line.endsWith('\r')) line.chop(1);
    return line;
}

std::optional<QString> decodeImportLine(QByteArrayView line) {
    std::optional<QString> text = platform::codepage::decode(line);
    if (!text && line.size() == kLongestLineBytes) text = platform::codepage::decode(line.chopped(1));
    return text;
}

bool endsCut(const ImportFile& file, QByteArrayView content) {
    if (content.isEmpty() || content.endsWith('\n')) return false;
    const QByteArrayView line = content.sliced(content.lastIndexOf('\n') + 1);
    const std::optional<QString> text = decodeImportLine(line);
    return !text || text->sliced(std::min<qsizetype>(file.firstFieldLength + 1, text->size())).count(u'|') <
                        file.fields - 1;
}

}  // namespace db
