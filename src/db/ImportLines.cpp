#include "db/ImportLines.h"

#include <algorithm>
#include <cstring>

#include "platform/CodePage.h"

namespace db {
namespace {

/// As many as the compiler counts side by side, which takes a number that it knows.
constexpr qsizetype kHalfBuffer = (kLongestLineBytes + 1) / 2;

int lineEndsIn(const char* half) {
    int ends = 0;
    for (qsizetype i = 0; i < kHalfBuffer; ++i) ends += half[i] == '\n' ? 1 : 0;
    return ends;
}

}  // namespace

QByteArrayView ImportLines::next() {
    const qsizetype most = std::min(rest_.size(), kLongestLineBytes);
    const void* const lineEnd = std::memchr(rest_.data(), '\n', size_t(most));
    const auto size = lineEnd == nullptr ? most : static_cast<const char*>(lineEnd) + 1 - rest_.data();
    const QByteArrayView line = rest_.first(size);
    rest_ = rest_.sliced(size);
    return line;
}

int ImportLines::count(QByteArrayView content) {
    // While each half of the line buffer holds a line's end, no line is longer than the buffer: counting the
    // ends is enough, and several times as quick as looking for each.
    int count = 0;
    qsizetype counted = 0;
    for (; counted + kHalfBuffer <= content.size(); counted += kHalfBuffer) {
        const int ends = lineEndsIn(content.data() + counted);
        if (ends == 0) break;
        count += ends;
    }
    // What follows is walked, from the beginning of the line that the last half ends in.
    ImportLines rest(content.sliced(content.first(counted).lastIndexOf('\n') + 1));
    for (; !rest.atEnd(); ++count) rest.next();
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
