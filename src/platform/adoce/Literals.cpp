#include "platform/adoce/Literals.h"

#include <QStringConverter>
#include <QVarLengthArray>
#include <cstring>

namespace platform::adoce {
namespace {

/// The quoted values of a text, as they stand in it.
using Values = QVarLengthArray<QStringView, 32>;

/// Writes the text to where `end` points, where 3 bytes must be free for each of its units; its end then.
char* writeUtf8(char* end, QStringView text) {
    // Codes and figures, which most values are.
    const auto* at = text.begin();
    for (; at != text.end() && at->unicode() < 0x80; ++at) *end++ = char(at->unicode());
    if (at == text.end()) return end;
    // Stateless: half a character at the end of a value would be kept back, and lost, instead of replaced.
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    return encoder.appendToBuffer(end, QStringView(at, text.end()));
}

void appendUtf8(QByteArray* target, QStringView text) {
    const qsizetype before = target->size();
    target->resize(before + 3 * text.size());
    const char* const end = writeUtf8(target->data() + before, text);
    target->truncate(end - target->constData());
}

bool startsWith(QStringView text, QStringView piece) {
    return text.size() >= piece.size() &&
           std::memcmp(text.utf16(), piece.utf16(), size_t(piece.size()) * sizeof(QChar)) == 0;
}

/// Finds the values of a text whose pieces are those that `parsed` holds; false for another text.
bool findInKnown(QStringView sql, const ParsedStatement& parsed, Values* values) {
    qsizetype begin = 0;
    for (const qsizetype end : parsed.pieceEnds) {
        const QStringView piece = QStringView(parsed.pieces).sliced(begin, end - begin);
        if (!startsWith(sql, piece)) return false;
        sql = sql.sliced(piece.size());
        if (end == parsed.pieces.size()) return sql.isEmpty();
        const qsizetype close = sql.indexOf(u'\'');
        if (close < 0) return false;
        values->append(sql.first(close));
        sql = sql.sliced(close);
        begin = end;
    }
    return false;
}

bool findInNew(QStringView sql, ParsedStatement* parsed, Values* values) {
    parsed->text.resize(0);
    parsed->pieces.resize(0);
    parsed->pieceEnds.clear();
    qsizetype at = 0;
    while (true) {
        const qsizetype open = sql.indexOf(u'\'', at);
        appendUtf8(&parsed->text, sql.sliced(at, (open < 0 ? sql.size() : open) - at));
        // From the closing quote before the piece to the opening quote after it.
        const qsizetype begin = at > 0 ? at - 1 : 0;
        const qsizetype end = open < 0 ? sql.size() : open + 1;
        parsed->pieces.append(sql.sliced(begin, end - begin));
        parsed->pieceEnds.push_back(int(parsed->pieces.size()));
        if (open < 0) return true;
        const qsizetype close = sql.indexOf(u'\'', open + 1);
        if (close < 0) return false;
        values->append(sql.sliced(open + 1, close - open - 1));
        parsed->text.append('?');
        at = close + 1;
        if (at < sql.size() && sql[at] == u'\'') return false;
    }
}

void take(const Values& values, ParsedStatement* parsed) {
    qsizetype room = 0;
    for (const QStringView value : values) room += 3 * value.size();
    // Room for all of them at once: growing would leave copies of what may be a password.
    parsed->values.resize(0);
    parsed->values.resize(room);
    parsed->ends.clear();
    char* const begin = parsed->values.data();
    char* end = begin;
    for (const QStringView value : values) {
        end = writeUtf8(end, value);
        parsed->ends.push_back(int(end - begin));
    }
    parsed->values.truncate(end - begin);
}

}  // namespace

ParsedStatement* StatementParser::parse(QStringView sql) {
    for (std::size_t i = 1; i <= remembered_.size(); ++i) {
        const std::size_t at = (last_ + i) % remembered_.size();
        Values values;
        if (!findInKnown(sql, remembered_[at], &values)) continue;
        take(values, &remembered_[at]);
        last_ = at;
        return &remembered_[at];
    }
    last_ = oldest_;
    oldest_ = (oldest_ + 1) % remembered_.size();
    ParsedStatement* const parsed = &remembered_[last_];
    Values values;
    if (!findInNew(sql, parsed, &values)) {
        parsed->pieceEnds.clear();
        return nullptr;
    }
    take(values, parsed);
    return parsed;
}

}  // namespace platform::adoce
